// SPDX-License-Identifier: Apache-2.0

/// Rows that may be given to others.
#ifndef TOOLS_ROWS_REDACTION_H
#define TOOLS_ROWS_REDACTION_H

#include "rows/table.h"

/// What tells one part from another of its model: serial number and asset tag.
inline constexpr const char* identifying_columns[] = {"SerialNo", "AssetTag"};

/// Puts a placeholder in place of every serial number and asset tag.
void redact(inventory_table& table);

#endif
