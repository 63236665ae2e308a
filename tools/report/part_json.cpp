// SPDX-License-Identifier: Apache-2.0

#include "report/part_json.h"

#include <cstddef>
#include <string>

#include <nlohmann/json.hpp>

#include "explanation/explanation.h"
#include "explanation/left_out_phrases.h"
#include "report/anchors.h"
#include "report/change_marks.h"
#include "report/page_template.h"
#include "report/reported_inventory.h"
#include "rows/column_units.h"
#include "rows/decoded_text.h"
#include "rows/pci_label_columns.h"
#include "rows/table.h"
#include "sources/library_log.h"

using nlohmann::json;

namespace {

// The columns that are none of the database have them around their names.
std::string without_parentheses(const std::string& column) {
    const bool is_label = column == pci_label_columns::name || column == pci_label_columns::kind;
    return is_label ? column.substr(1, column.size() - 2) : column;
}

// Those that are there, each with the raw value where people see another text.
json values_json(const inventory_table& table, std::size_t place) {
    json values = json::array();
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        const std::string& name = table.columns[column];
        const inventory_value& value = table.rows[place][column];
        if (!is_put(value)) {
            continue;
        }
        const std::string raw = column_units::plain(value);
        const std::string text = decoded_text(*table.kind, name, value);
        values.push_back({{"column", without_parentheses(name)}, {"text", text}, {"raw", raw == text ? "" : raw}});
    }
    return values;
}

}  // namespace

json mark_json(const change_mark& mark) {
    return {{"word", mark.word}, {"mark", mark.mark}};
}

json anchor_json(const anchor& named) {
    return {{"id", named.id}, {"href", fragment_of(named.id)}, {"place", named.place}};
}

json part_json(const reported_inventory& reported, const inventory_row& row) {
    json part = anchor_json(reported.names.of(row));
    part["kind"] = row.kind().name;
    part["values"] = filled("values.html", {{"all", values_json(reported.labelled_table(row.kind()), row.place())}});
    const change_mark* mark = reported.marks.of(row);
    part["change"] = mark == nullptr ? json() : mark_json(*mark);
    return part;
}

std::string why_text(const explanation& told) {
    return "left out: " + (told.rule ? omission_text(*told.rule, 1) : code_of(told));
}

json left_out_json(const reported_inventory& reported, std::size_t place) {
    const explanation& told = reported.explanations[place];
    json part = anchor_json(reported.names.of_explanation(place));
    part["kind"] = told.recorded_by == nullptr ? "component" : told.recorded_by->kind->name;
    part["change"] = nullptr;
    part["title"] = told.title;
    part["path"] = told.path;
    part["code"] = code_of(told);
    part["why"] = why_text(told);
    part["reasons"] = told.judged.reasons;
    part["logged"] = json::array();
    for (const log_line& line : told.log) {
        part["logged"].push_back(line.text);
    }
    return part;
}

std::string counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}
