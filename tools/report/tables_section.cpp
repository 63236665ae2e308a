// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "console/text_table.h"
#include "report/anchors.h"
#include "report/change_marks.h"
#include "report/page_template.h"
#include "report/part_json.h"
#include "report/reported_inventory.h"
#include "report/sections.h"
#include "rows/column_units.h"
#include "rows/decoded_text.h"
#include "rows/field.h"
#include "rows/fields.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "rows/part_text.h"
#include "rows/row_text.h"
#include "rows/table.h"

using nlohmann::json;

namespace {

json heading_json(const listed_column& shown, const inventory_kind& kind) {
    const char* column = shown.text.column;
    const field* known = column == nullptr ? nullptr : find_field(kind, column);
    return {{"heading", shown.heading},
            {"meaning", known == nullptr ? "" : known->meaning},
            {"number", shown.aligned == alignment::right}};
}

// The decoded text, with the raw one beside it where that is another.
json cell_json(const listed_column& shown, const inventory_row& row) {
    const char* column = shown.text.column;
    const std::string text =
        column == nullptr ? text_of(shown.text, row) : decoded_text(row.kind(), column, row[column]);
    if (stripped(text).empty()) {
        return {{"text", ""}};
    }
    const std::string raw = column == nullptr ? text : column_units::plain(row[column]);
    return {{"text", text}, {"raw", raw == text ? "" : raw}, {"number", shown.aligned == alignment::right}};
}

bool is_empty(const std::vector<json>& cells) {
    return std::all_of(cells.begin(), cells.end(),
                       [](const json& cell) { return cell["text"].get_ref<const std::string&>().empty(); });
}

json table_json(const reported_inventory& reported, const inventory_table& table) {
    json headings = json::array();
    json rows = json::array();
    for (std::size_t place = 0; place < table.rows.size(); ++place) {
        const inventory_row row(table, place);
        const anchor& named = reported.names.of(row);
        json& told =
            rows.emplace_back(json{{"place", named.place}, {"href", fragment_of(named.id)}, {"cells", json::array()}});
        if (const change_mark* mark = reported.marks.of(row)) {
            told["change"] = mark_json(*mark);
        }
    }
    for (const listed_column& shown : table.kind->description().listed) {
        std::vector<json> cells;
        cells.reserve(table.rows.size());
        for (std::size_t place = 0; place < table.rows.size(); ++place) {
            cells.push_back(cell_json(shown, inventory_row(table, place)));
        }
        if (is_empty(cells)) {
            continue;
        }
        headings.push_back(heading_json(shown, *table.kind));
        for (std::size_t place = 0; place < table.rows.size(); ++place) {
            rows[place]["cells"].push_back(std::move(cells[place]));
        }
    }
    return {{"title", table.kind->title},
            {"count", table.rows.size()},
            {"any", !table.rows.empty()},
            {"headings", std::move(headings)},
            {"rows", std::move(rows)}};
}

}  // namespace

std::string tables_section(const reported_inventory& reported) {
    std::string tables;
    for (const inventory_table& table : reported.labelled) {
        tables += filled("table.html", table_json(reported, table));
    }
    return filled("tables.html", {{"tables", tables}});
}
