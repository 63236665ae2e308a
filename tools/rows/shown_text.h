// SPDX-License-Identifier: Apache-2.0

/// What is shown of a row: one of its columns, in its unit, or what several say together.
#ifndef TOOLS_ROWS_SHOWN_TEXT_H
#define TOOLS_ROWS_SHOWN_TEXT_H

#include "rows/row_text.h"

/// Tables of what is shown are made of these.
struct shown_text {
    constexpr shown_text(const char* name) : column(name) {}    // NOLINT(google-explicit-constructor): see above
    constexpr shown_text(row_text writer) : several(writer) {}  // NOLINT(google-explicit-constructor)

    const char* column = nullptr;  ///< null for several columns
    row_text several = nullptr;    ///< null for one column
};

#endif
