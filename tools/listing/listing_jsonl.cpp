// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <string>
#include <vector>

#include "listing/listing_formats.h"
#include "rows/table.h"
#include "rows/value_json.h"

std::string listing_jsonl(const std::vector<inventory_table>& tables) {
    std::string lines;
    for (const inventory_table& table : tables) {
        for (std::size_t row = 0; row < table.rows.size(); ++row) {
            nlohmann::ordered_json line = {{"schema", json_schema}, {"kind", table.kind->name}};
            line.update(row_json(table, row));
            lines += json_line(line);
        }
    }
    return lines;
}
