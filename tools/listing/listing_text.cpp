// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "console/text_table.h"
#include "listing/listing_formats.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "rows/part_text.h"
#include "rows/row_text.h"
#include "rows/table.h"

namespace {

bool is_empty(const std::string& cell) {
    return stripped(cell).empty();
}

text_column filled(const listed_column& shown, const inventory_table& table) {
    const bool is_free_text = is_plain(shown.text, *table.kind) && shown.aligned == alignment::left;
    text_column column{shown.heading, shown.aligned, is_free_text, {}};
    for (std::size_t row = 0; row < table.rows.size(); ++row) {
        column.cells.push_back(text_of(shown.text, inventory_row(table, row)));
    }
    return column;
}

// By the names of the database; where none are chosen, those that people want to see.
std::vector<listed_column> columns_for(const inventory_table& table, const listing_view& view) {
    if (view.columns.empty()) {
        return table.kind->description().listed;
    }
    std::vector<listed_column> columns;
    for (const std::string& name : view.columns) {
        if (find_column(table, name)) {
            columns.push_back({name.c_str(), name.c_str()});
        }
    }
    return columns;
}

std::vector<text_column> filled_columns(const inventory_table& table, const listing_view& view) {
    std::vector<text_column> columns;
    for (const listed_column& shown : columns_for(table, view)) {
        text_column column = filled(shown, table);
        const bool is_wanted = view.wide || !view.columns.empty();
        if (is_wanted || !std::all_of(column.cells.begin(), column.cells.end(), is_empty)) {
            columns.push_back(std::move(column));
        }
    }
    return columns;
}

}  // namespace

std::string listing_text(const std::vector<inventory_table>& tables, const listing_view& view,
                         const text_style& style) {
    text_style fitting = style;
    fitting.width = view.wide ? 0 : style.width;
    std::string text;
    for (const inventory_table& table : tables) {
        text += text.empty() ? "" : "\n";
        text += heading_text(std::string(table.kind->title) + " (" + std::to_string(table.rows.size()) + ")", style);
        text += '\n';
        const std::vector<text_column> columns =
            table.rows.empty() ? std::vector<text_column>() : filled_columns(table, view);
        if (!columns.empty()) {
            text += table_text(columns, fitting);
        }
    }
    return text;
}
