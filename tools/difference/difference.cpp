// SPDX-License-Identifier: Apache-2.0

#include "difference/difference.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "difference/comparable_tables.h"
#include "difference/row_matching.h"
#include "rows/row_identity.h"
#include "rows/table.h"

namespace {

std::vector<std::size_t> differing_columns(const table_difference& tables, const row_pair& rows) {
    const std::vector<inventory_value>& old_values = tables.old_table.rows[rows.old_row];
    const std::vector<inventory_value>& new_values = tables.new_table.rows[rows.new_row];
    std::vector<std::size_t> columns;
    for (std::size_t column = 0; column < new_values.size(); ++column) {
        if (old_values[column] != new_values[column]) {
            columns.push_back(column);
        }
    }
    return columns;
}

bool is_identifying(const inventory_table& table, std::size_t column) {
    const std::vector<std::string>& names = identity_of(*table.kind).columns;
    return std::find(names.begin(), names.end(), table.columns[column]) != names.end();
}

row_change change_of_moved(const table_difference& tables, const row_pair& rows) {
    row_change change{rows, differing_columns(tables, rows)};
    change.columns.erase(
        std::remove_if(change.columns.begin(), change.columns.end(),
                       [&tables](std::size_t column) { return is_identifying(tables.new_table, column); }),
        change.columns.end());
    return change;
}

table_difference compare_tables(inventory_table old_table, inventory_table new_table) {
    align_columns(old_table, new_table);
    row_matching rows = match_rows(old_table, new_table);
    table_difference difference{std::move(old_table), std::move(new_table), std::move(rows), {}, {}};
    for (const row_pair& kept : difference.rows.kept) {
        std::vector<std::size_t> columns = differing_columns(difference, kept);
        if (!columns.empty()) {
            difference.changed.push_back({kept, std::move(columns)});
        }
    }
    for (const row_pair& moved : difference.rows.moved) {
        difference.moved.push_back(change_of_moved(difference, moved));
    }
    return difference;
}

}  // namespace

std::vector<table_difference> compare(std::vector<inventory_table> old_tables,
                                      std::vector<inventory_table> new_tables) {
    replace_row_ids(old_tables);
    replace_row_ids(new_tables);
    std::vector<table_difference> differences;
    differences.reserve(new_tables.size());
    for (std::size_t kind = 0; kind < new_tables.size(); ++kind) {
        differences.push_back(compare_tables(std::move(old_tables[kind]), std::move(new_tables[kind])));
    }
    return differences;
}

bool table_difference::is_same() const {
    return rows.removed.empty() && rows.added.empty() && changed.empty() && moved.empty();
}

bool is_same(const std::vector<table_difference>& differences) {
    return std::all_of(differences.begin(), differences.end(),
                       [](const table_difference& each) { return each.is_same(); });
}
