// SPDX-License-Identifier: Apache-2.0

/// What the value of a column stands for.
#ifndef TOOLS_ROWS_DECODED_TEXT_H
#define TOOLS_ROWS_DECODED_TEXT_H

#include <string>

#include "rows/kinds.h"
#include "rows/table.h"

/// For people who see the value itself beside it: the names of numbers without them, bits by their names, everything
/// else in its unit.
std::string decoded_text(const inventory_kind& kind, const std::string& column, const inventory_value& value);

#endif
