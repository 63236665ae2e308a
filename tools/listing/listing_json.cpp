// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <string>
#include <vector>

#include "listing/listing_formats.h"
#include "rows/table.h"
#include "rows/value_json.h"

using json = nlohmann::ordered_json;

json rows_json(const inventory_table& table) {
    json rows = json::array();
    for (std::size_t row = 0; row < table.rows.size(); ++row) {
        rows.push_back(row_json(table, row));
    }
    return rows;
}

json listing_document(const std::vector<inventory_table>& tables) {
    json document = {{"schema", json_schema}};
    for (const inventory_table& table : tables) {
        document[table.kind->name] = rows_json(table);
    }
    return document;
}

std::string listing_json(const std::vector<inventory_table>& tables) {
    return json_text(listing_document(tables));
}
