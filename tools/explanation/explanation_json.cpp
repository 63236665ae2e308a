// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <vonk_log_workstation.h>

#include "explanation/explanation.h"
#include "explanation/explanation_formats.h"
#include "explanation/odd_values.h"
#include "explanation/unused_settings.h"
#include "explanation/verdict.h"
#include "rows/fields.h"
#include "rows/table.h"
#include "rows/value_json.h"
#include "sources/library_log.h"

namespace {

using json = nlohmann::ordered_json;

struct level_name {
    vonk_log::level value;
    const char* name;
};

constexpr level_name level_names[] = {
    {vonk_log::level::error, "error"},
    {vonk_log::level::warning, "warning"},
    {vonk_log::level::info, "info"},
};

struct oddity_name {
    oddity value;
    const char* name;
};

constexpr oddity_name oddity_names[] = {
    {oddity::text_for_number, "text_for_number"},
    {oddity::no_number, "no_number"},
    {oddity::too_large, "too_large"},
    {oddity::replaced, "replaced"},
};

template <class Named, class Value, std::size_t Count>
const char* name_in(const Named (&names)[Count], Value value) {
    return std::find_if(std::begin(names), std::end(names), [value](const Named& each) { return each.value == value; })
        ->name;
}

// Only the columns that were put, and the row's id.
json put_columns_json(const std::optional<inventory_table>& row) {
    if (!row) {
        return nullptr;
    }
    json columns = json::object();
    for (std::size_t column = 0; column < row->columns.size(); ++column) {
        const inventory_value& value = row->rows.front()[column];
        if (is_put(value)) {
            const bool absent = is_absent(*row->kind, row->columns[column], value);
            columns[row->columns[column]] = absent ? json() : value_json(value);
        }
    }
    return columns;
}

json log_json(const std::vector<log_line>& log) {
    json lines = json::array();
    for (const log_line& line : log) {
        lines.push_back({{"level", name_in(level_names, line.at)}, {"text", line.text}});
    }
    return lines;
}

json unused_json(const std::vector<unused_setting>& unused) {
    json settings = json::array();
    for (const unused_setting& setting : unused) {
        settings.push_back({{"group", setting.group},
                            {"setting", setting.name},
                            {"known", setting.why != idleness::unknown},
                            {"similar", setting.similar == nullptr ? json() : json(setting.similar)}});
    }
    return settings;
}

json odd_json(const std::vector<odd_value>& odd) {
    json values = json::array();
    for (const odd_value& each : odd) {
        values.push_back({{"group", each.group},
                          {"setting", each.setting},
                          {"column", each.column},
                          {"problem", name_in(oddity_names, each.what)},
                          {"value", each.value},
                          {"stored", value_json(each.stored)}});
    }
    return values;
}

json explanation_object(const explanation& told) {
    return {
        {"path", told.path},
        {"title", told.title},
        {"groups", told.groups},
        {"result", name_of(told.judged.became)},
        {"table", told.row ? json(told.row->kind->record.table) : json()},
        {"row", put_columns_json(told.row)},
        {"reasons", told.judged.reasons},
        {"missing_settings", told.judged.missing},
        {"unused_settings", unused_json(told.unused)},
        {"odd_values", odd_json(told.odd)},
        {"log", log_json(told.log)},
    };
}

}  // namespace

json explanation_document(const std::vector<explanation>& explanations) {
    const explanation_counts counts = count(explanations);
    json document = {
        {"schema", json_schema},
        {"summary",
         {{"components", counts.components},
          {"rows", counts.rows},
          {"unused_settings", counts.unused_settings},
          {"odd_values", counts.odd_values}}},
        {"components", json::array()},
    };
    for (const explanation& told : explanations) {
        document["components"].push_back(explanation_object(told));
    }
    return document;
}

std::string explanation_json(const std::vector<explanation>& explanations) {
    return json_text(explanation_document(explanations));
}
