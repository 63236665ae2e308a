// SPDX-License-Identifier: Apache-2.0

/// The forms in which an inventory is printed.
#ifndef TOOLS_LISTING_LISTING_FORMATS_H
#define TOOLS_LISTING_LISTING_FORMATS_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "console/text_table.h"
#include "rows/table.h"

/// Which columns people see.
struct listing_view {
    std::vector<std::string> columns;  ///< by name; where there are none, those that matter and hold something
    bool wide = false;                 ///< also those that hold nothing, in lines of any length
};

/// For people: in units, fitted to the width of the style. It may change at any time.
std::string listing_text(const std::vector<inventory_table>& tables, const listing_view& view, const text_style& style);

/// For programs: one object, {"schema": 2, "processors": [...], ...}, each row an object of all its columns; a column
/// that was never put is null.
std::string listing_json(const std::vector<inventory_table>& tables);

/// The same before it is printed.
nlohmann::ordered_json listing_document(const std::vector<inventory_table>& tables);

/// The list of one table in it.
nlohmann::ordered_json rows_json(const inventory_table& table);

/// For programs that take a line at a time: an object for each row, {"schema": 2, "kind": "processors", ...}.
std::string listing_jsonl(const std::vector<inventory_table>& tables);

/// For spreadsheets: RFC 4180 with a header line; a column that was never put is empty, an empty text is "". Holds one
/// table.
std::string listing_csv(const std::vector<inventory_table>& tables);

#endif
