// SPDX-License-Identifier: Apache-2.0

#include "difference/difference.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "difference/comparable_tables.h"
#include "difference/row_matching.h"
#include "rows/kind_description.h"
#include "rows/serial_number.h"
#include "rows/table.h"

namespace {

// Columns whose texts are padded with blanks by some firmware and not by other, besides those that identify a part.
constexpr const char* padded_columns[] = {"SerialNo", "PartNo"};

bool is_identifying(const inventory_table& table, std::size_t column) {
    const std::vector<std::string>& names = table.kind->description().identity.columns;
    return std::find(names.begin(), names.end(), table.columns[column]) != names.end();
}

bool is_padded(const inventory_table& table, std::size_t column) {
    return is_identifying(table, column) || std::find(std::begin(padded_columns), std::end(padded_columns),
                                                      table.columns[column]) != std::end(padded_columns);
}

bool is_same_value(const inventory_table& table, std::size_t column, const inventory_value& old_value,
                   const inventory_value& new_value) {
    const std::string* old_text = text_in(old_value);
    const std::string* new_text = text_in(new_value);
    if (old_text != nullptr && new_text != nullptr && is_padded(table, column)) {
        return without_blanks_around(*old_text) == without_blanks_around(*new_text);
    }
    return old_value == new_value;
}

std::vector<std::size_t> differing_columns(const table_difference& tables, const row_pair& rows) {
    const std::vector<inventory_value>& old_values = tables.old_table.rows[rows.old_row];
    const std::vector<inventory_value>& new_values = tables.new_table.rows[rows.new_row];
    std::vector<std::size_t> columns;
    for (std::size_t column = 0; column < new_values.size(); ++column) {
        if (!is_same_value(tables.new_table, column, old_values[column], new_values[column])) {
            columns.push_back(column);
        }
    }
    return columns;
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

comparison compare_prepared(std::vector<inventory_table> old_tables, std::vector<inventory_table> new_tables) {
    comparison result;
    result.ignored_nodes = forget_differing_nodes(old_tables, new_tables);
    replace_row_ids(old_tables);
    replace_row_ids(new_tables);
    for (std::size_t kind = 0; kind < new_tables.size(); ++kind) {
        result.kinds.push_back(compare_tables(std::move(old_tables[kind]), std::move(new_tables[kind])));
    }
    return result;
}

}  // namespace

comparison compare(const std::vector<inventory_table>& old_tables, const std::vector<inventory_table>& new_tables,
                   const std::vector<std::string>& ignored) {
    if (ignored.empty()) {
        return compare_prepared(old_tables, new_tables);
    }
    std::vector<inventory_table> old_left = old_tables;
    std::vector<inventory_table> new_left = new_tables;
    remove_columns(old_left, ignored);
    remove_columns(new_left, ignored);
    comparison result = compare_prepared(std::move(old_left), std::move(new_left));
    result.ignored_columns = ignored;
    result.differs_in_ignored = result.is_same() && !compare_prepared(old_tables, new_tables).is_same();
    return result;
}

bool table_difference::is_same() const {
    return rows.removed.empty() && rows.added.empty() && changed.empty() && moved.empty();
}

bool comparison::is_same() const {
    return std::all_of(kinds.begin(), kinds.end(), [](const table_difference& each) { return each.is_same(); });
}
