// SPDX-License-Identifier: Apache-2.0

#include "difference/difference_formats.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "console/text_table.h"
#include "console/utf8.h"
#include "difference/comparable_tables.h"
#include "difference/difference.h"
#include "difference/row_matching.h"
#include "rows/column_units.h"
#include "rows/fields.h"
#include "rows/part_text.h"
#include "rows/table.h"

namespace {

constexpr const char* column_indent = "    ";
constexpr std::size_t most_named = 3;

struct sign {
    const char* text;
    const char* color;
};

constexpr sign removed_sign = {"-", "\033[31m"};
constexpr sign added_sign = {"+", "\033[32m"};
constexpr sign changed_sign = {"~", "\033[33m"};
constexpr sign moved_sign = {">", "\033[36m"};
constexpr sign note_sign = {"!", "\033[35m"};
constexpr const char* end_of_color = "\033[0m";

std::string value_text(const inventory_value& value, column_unit unit) {
    const std::string* text = text_in(value);
    return text != nullptr ? '"' + printable(*text) + '"' : unit(value);
}

// Writes the lines of one kind.
class writer {
public:
    writer(const table_difference& difference, const text_style& style)
        : difference_(difference),
          old_(difference.old_table),
          new_(difference.new_table),
          colored_(style.has_control_sequences) {}

    std::string text() {
        for (const std::size_t row : difference_.rows.added) {
            line(added_sign, named_part(new_, row));
        }
        for (const std::size_t row : difference_.rows.removed) {
            line(removed_sign, named_part(old_, row));
        }
        for (const row_change& change : difference_.changed) {
            line(changed_sign, named_part(new_, change.rows.new_row));
            columns(change);
        }
        for (const row_change& change : difference_.moved) {
            line(moved_sign, place(old_, change.rows.old_row) + " -> " + named_part(new_, change.rows.new_row));
            columns(change);
        }
        for (const row_group& group : difference_.rows.collisions) {
            line(note_sign, collision(group));
        }
        for (const row_group& group : difference_.rows.ambiguous) {
            line(note_sign, "one serial number in several records, so what moved is not known: old " +
                                places(old_, group.old_rows) + "; new " + places(new_, group.new_rows));
        }
        return text_;
    }

private:
    void line(const sign& kind, const std::string& text) {
        const std::string plain = std::string(kind.text) + ' ' + text;
        text_ += (colored_ ? kind.color + plain + end_of_color : plain) + '\n';
    }

    static std::string place(const inventory_table& table, std::size_t row) {
        return place_text(inventory_row(table, row));
    }

    static std::string named_part(const inventory_table& table, std::size_t row) {
        const std::string part = part_text(inventory_row(table, row));
        return place(table, row) + (part.empty() ? "" : ": " + part);
    }

    void columns(const row_change& change) {
        std::size_t width = 0;
        for (const std::size_t column : change.columns) {
            width = std::max(width, length_of(new_.columns[column]));
        }
        for (const std::size_t column : change.columns) {
            const std::string& name = new_.columns[column];
            text_ += column_indent + printable(name) + std::string(width - length_of(name) + 2, ' ') +
                     values(change.rows, column) + '\n';
        }
    }

    // In units as long as the difference shows in them.
    std::string values(const row_pair& rows, std::size_t column) const {
        const inventory_value& old_value = old_.rows[rows.old_row][column];
        const inventory_value& new_value = new_.rows[rows.new_row][column];
        const column_unit unit = unit_of(*new_.kind, new_.columns[column]);
        const std::string old_text = value_text(old_value, unit);
        const std::string new_text = value_text(new_value, unit);
        if (old_text != new_text) {
            return old_text + " -> " + new_text;
        }
        return value_text(old_value, column_units::plain) + " -> " + value_text(new_value, column_units::plain);
    }

    std::string collision(const row_group& group) const {
        const std::string where =
            group.old_rows.empty() ? place(new_, group.new_rows.front()) : place(old_, group.old_rows.front());
        return where + ": " + std::to_string(group.old_rows.size()) + " old and " +
               std::to_string(group.new_rows.size()) + " new records, matched in order";
    }

    static std::string places(const inventory_table& table, const std::vector<std::size_t>& rows) {
        const std::size_t named = std::min(rows.size(), most_named);
        std::string text;
        for (std::size_t i = 0; i < named; ++i) {
            text += (i == 0 ? "" : " and ") + place(table, rows[i]);
        }
        return named == rows.size() ? text : text + " and " + std::to_string(rows.size() - named) + " more";
    }

    const table_difference& difference_;
    const inventory_table& old_;
    const inventory_table& new_;
    bool colored_;
    std::string text_;
};

std::string counts(const table_difference& difference) {
    const std::pair<std::size_t, const char*> all[] = {{difference.rows.added.size(), " added"},
                                                       {difference.rows.removed.size(), " removed"},
                                                       {difference.changed.size(), " changed"},
                                                       {difference.moved.size(), " moved"}};
    std::string text;
    for (const auto& [count, what] : all) {
        if (count != 0) {
            text += (text.empty() ? "" : ", ") + std::to_string(count) + what;
        }
    }
    return text.empty() ? "no difference" : text;
}

std::string node_text(const node_index& node) {
    return node ? "node " + std::to_string(*node) : "no node";
}

std::string note_line(const comparison& compared) {
    const std::string note = node_note(compared);
    return note.empty() ? "" : note + '\n';
}

std::string ignored_text(const std::vector<std::string>& columns) {
    if (columns == ignored_columns("serials")) {
        return "serial numbers";
    }
    std::string text;
    for (const std::string& column : columns) {
        text += (text.empty() ? "" : ", ") + column;
    }
    return text;
}

std::string sameness(const comparison& compared) {
    return compared.differs_in_ignored ? "Same but for " + ignored_text(compared.ignored_columns) + ".\n"
                                       : "No difference.\n";
}

}  // namespace

std::string node_note(const comparison& compared) {
    if (!compared.ignored_nodes) {
        return "";
    }
    const auto& [old_node, new_node] = *compared.ignored_nodes;
    return "All parts stand at " + node_text(old_node) + " on one side and at " + node_text(new_node) +
           " on the other: nodes are not compared.";
}

std::string difference_text(const comparison& compared, const text_style& style) {
    std::string text;
    for (const table_difference& difference : compared.kinds) {
        const std::string lines = writer(difference, style).text();
        if (!lines.empty()) {
            const std::string heading = std::string(difference.new_table.kind->title) + ": " + counts(difference);
            text += (text.empty() ? "" : "\n") + heading_text(heading, style) + '\n' + lines;
        }
    }
    const std::string note = note_line(compared);
    if (text.empty()) {
        return note + sameness(compared);
    }
    return (note.empty() ? "" : note + '\n') + text;
}

std::string difference_counts(const comparison& compared, const text_style& style) {
    const std::string note = note_line(compared);
    if (compared.is_same()) {
        return note + sameness(compared);
    }
    text_column kinds = {"Kind", alignment::left, false, {}};
    text_column differences = {"Difference", alignment::left, true, {}};
    for (const table_difference& difference : compared.kinds) {
        kinds.cells.emplace_back(difference.new_table.kind->title);
        differences.cells.push_back(counts(difference));
    }
    return note + table_text({kinds, differences}, style);
}
