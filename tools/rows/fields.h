// SPDX-License-Identifier: Apache-2.0

/// Every column of every kind. docs/fields.md is written from these.
#ifndef TOOLS_ROWS_FIELDS_H
#define TOOLS_ROWS_FIELDS_H

#include <string>
#include <vector>

#include "rows/column_units.h"
#include "rows/field.h"
#include "rows/kinds.h"
#include "rows/table.h"

/// When the field is absent, and what is stored then, for people.
std::string absence_text(const field& described);

/// In the order of the table's columns.
const std::vector<field>& fields_of(const inventory_kind& kind);

/// Null for a column that later versions, or other programs, have added.
const field* find_field(const inventory_kind& kind, const std::string& column);

/// The unit of the column of that name in rows of `kind`; plain where it has none.
column_unit unit_of(const inventory_kind& kind, const std::string& column);

/// Puts nothing in place of the values that stand for it.
void forget_absent_values(inventory_table& table);

/// Whether the value says that there is none.
bool is_absent(const inventory_kind& kind, const std::string& column, const inventory_value& value);

#endif
