// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <string>
#include <vector>

#include "difference/comparable_tables.h"
#include "difference/difference.h"
#include "difference/difference_formats.h"
#include "difference/row_matching.h"
#include "rows/kind_description.h"
#include "rows/table.h"
#include "rows/value_json.h"

namespace {

using json = nlohmann::ordered_json;

json identity_json(const inventory_table& table, std::size_t row) {
    const std::vector<std::string>& columns = table.kind->description().identity.columns;
    const inventory_row values(table, row);
    json identity = json::object();
    for (const std::string& column : columns) {
        identity[column] = value_json(values[column]);
    }
    return identity;
}

json rows_json(const inventory_table& table, const std::vector<std::size_t>& rows) {
    json list = json::array();
    for (const std::size_t row : rows) {
        list.push_back({{"identity", identity_json(table, row)}, {"columns", row_json(table, row)}});
    }
    return list;
}

json columns_json(const table_difference& difference, const row_change& change) {
    json columns = json::object();
    for (const std::size_t column : change.columns) {
        columns[difference.new_table.columns[column]] = {
            {"old", value_json(difference.old_table.rows[change.rows.old_row][column])},
            {"new", value_json(difference.new_table.rows[change.rows.new_row][column])},
        };
    }
    return columns;
}

json changed_json(const table_difference& difference) {
    json list = json::array();
    for (const row_change& change : difference.changed) {
        list.push_back({{"identity", identity_json(difference.new_table, change.rows.new_row)},
                        {"columns", columns_json(difference, change)}});
    }
    return list;
}

json moved_json(const table_difference& difference) {
    json list = json::array();
    for (const row_change& change : difference.moved) {
        list.push_back({{"old_identity", identity_json(difference.old_table, change.rows.old_row)},
                        {"identity", identity_json(difference.new_table, change.rows.new_row)},
                        {"columns", columns_json(difference, change)}});
    }
    return list;
}

json collisions_json(const table_difference& difference) {
    json list = json::array();
    for (const row_group& group : difference.rows.collisions) {
        const json identity = group.old_rows.empty() ? identity_json(difference.new_table, group.new_rows.front())
                                                     : identity_json(difference.old_table, group.old_rows.front());
        list.push_back({{"identity", identity}, {"old", group.old_rows.size()}, {"new", group.new_rows.size()}});
    }
    return list;
}

json identities_json(const inventory_table& table, const std::vector<std::size_t>& rows) {
    json list = json::array();
    for (const std::size_t row : rows) {
        list.push_back(identity_json(table, row));
    }
    return list;
}

json ambiguous_json(const table_difference& difference) {
    json list = json::array();
    for (const row_group& group : difference.rows.ambiguous) {
        list.push_back({{"old", identities_json(difference.old_table, group.old_rows)},
                        {"new", identities_json(difference.new_table, group.new_rows)}});
    }
    return list;
}

json difference_of_kind_json(const table_difference& difference) {
    return {
        {"added", rows_json(difference.new_table, difference.rows.added)},
        {"removed", rows_json(difference.old_table, difference.rows.removed)},
        {"changed", changed_json(difference)},
        {"moved", moved_json(difference)},
        {"collisions", collisions_json(difference)},
        {"ambiguous", ambiguous_json(difference)},
    };
}

json node_json(const node_index& node) {
    return node ? json(*node) : json(nullptr);
}

}  // namespace

json difference_document(const comparison& compared) {
    json document = {{"schema", json_schema}, {"same", compared.is_same()}};
    if (compared.ignored_nodes) {
        const auto& [old_node, new_node] = *compared.ignored_nodes;
        document["ignored_nodes"] = {{"old", node_json(old_node)}, {"new", node_json(new_node)}};
    }
    if (!compared.ignored_columns.empty()) {
        document["ignored_columns"] = compared.ignored_columns;
    }
    for (const table_difference& difference : compared.kinds) {
        document[difference.new_table.kind->name] = difference_of_kind_json(difference);
    }
    return document;
}

std::string difference_json(const comparison& compared) {
    return json_text(difference_document(compared));
}
