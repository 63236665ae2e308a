// SPDX-License-Identifier: Apache-2.0

/// How an inventory row is written in JSON.
#ifndef TOOLS_ROWS_VALUE_JSON_H
#define TOOLS_ROWS_VALUE_JSON_H

#include <string>

#include <nlohmann/json.hpp>

#include "rows/table.h"

/// Raw: a number as a number, null for a column that was never put.
nlohmann::ordered_json value_json(const inventory_value& value);

/// Every column of the row at that place by its name, in the order of the table.
nlohmann::ordered_json row_json(const inventory_table& table, std::size_t place);

/// The document as the command prints it: in lines, and safe for a terminal.
std::string json_text(const nlohmann::ordered_json& document);

#endif
