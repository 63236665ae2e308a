// SPDX-License-Identifier: Apache-2.0

#include "rows/redaction.h"

#include <vector>

#include "rows/table.h"

namespace {

constexpr const char* replacement = "[redacted]";

}  // namespace

void redact(inventory_table& table) {
    for (const char* name : identifying_columns) {
        const auto column = find_column(table, name);
        if (!column) {
            continue;
        }
        for (std::vector<inventory_value>& row : table.rows) {
            if (is_put(row[*column])) {
                row[*column] = replacement;
            }
        }
    }
}
