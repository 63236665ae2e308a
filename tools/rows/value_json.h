// SPDX-License-Identifier: Apache-2.0

/// How an inventory row is written in JSON.
#ifndef TOOLS_ROWS_VALUE_JSON_H
#define TOOLS_ROWS_VALUE_JSON_H

#include <string>

#include <nlohmann/json.hpp>

#include "rows/table.h"

/// The number "schema" of every JSON document: raised when a program that reads today's output would misread
/// tomorrow's. 2: what is absent is null, whatever the database stores for it.
inline constexpr int json_schema = 2;

/// Raw: a number as a number, null for a column that was never put.
nlohmann::ordered_json value_json(const inventory_value& value);

/// Every column of the row at that place by its name, in the order of the table.
nlohmann::ordered_json row_json(const inventory_table& table, std::size_t place);

/// An object on one line, for documents of lines; safe for a terminal.
std::string json_line(const nlohmann::ordered_json& document);

/// The document as the command prints it: in lines, and safe for a terminal.
std::string json_text(const nlohmann::ordered_json& document);

#endif
