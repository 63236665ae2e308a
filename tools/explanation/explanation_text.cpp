// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "console/text_table.h"
#include "console/utf8.h"
#include "explanation/explanation.h"
#include "explanation/explanation_formats.h"
#include "explanation/unused_settings.h"
#include "rows/table.h"

namespace {

std::string counted(std::size_t count, const std::string& one, const std::string& many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

std::string line(const char* label, const std::string& text) {
    return std::string("  ") + label + printable(text) + '\n';
}

std::string row_summary(const inventory_table& row) {
    std::string id;
    std::string columns;
    for (std::size_t column = 0; column < row.columns.size(); ++column) {
        const inventory_value& value = row.rows.front()[column];
        if (row.columns[column] == "Id") {
            id = std::to_string(std::get<std::int64_t>(value));
        } else if (is_put(value)) {
            columns += (columns.empty() ? "" : ", ") + row.columns[column];
        }
    }
    return std::string(row.kind->record.table) + ' ' + id + ": " + columns;
}

std::string unused_text(const unused_setting& unused) {
    const std::string text = "'" + unused.name + "' in " + unused.group;
    if (unused.is_known) {
        return text + ", which this record does not take";
    }
    return unused.similar == nullptr ? text : text + "; '" + unused.similar + "' may be meant";
}

std::string component_text(const explanation& told, const text_style& style) {
    std::string text = heading_text(printable(told.title), style) + '\n' + line("at      ", told.path);
    if (told.row) {
        text += line("row     ", row_summary(*told.row));
    }
    const char* label = "no row  ";
    for (const std::string& reason : told.judged.reasons) {
        text += line(label, reason);
        label = "        ";
    }
    for (const unused_setting& unused : told.unused) {
        text += line("unused  ", unused_text(unused));
    }
    return text;
}

}  // namespace

std::string explanation_text(const std::vector<explanation>& explanations, const text_style& style) {
    std::string text;
    for (const explanation& told : explanations) {
        text += component_text(told, style) + '\n';
    }
    const explanation_counts counts = count(explanations);
    return text + counted(counts.components, "component", "components") +
           " to record: " + counted(counts.rows, "row", "rows") + ", " +
           std::to_string(counts.components - counts.rows) + " without a row; " +
           counted(counts.unused_settings, "setting", "settings") + " that no column takes\n";
}
