// SPDX-License-Identifier: Apache-2.0

#include "console/text_table.h"

#include <langinfo.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include "console/output.h"
#include "console/utf8.h"

namespace {

constexpr const char* gap = "  ";
constexpr std::size_t gap_width = 2;
constexpr std::size_t narrowest = 8;
constexpr std::size_t longest_aligned = 100;  // longer cells stand out, or one of them would make every line as long

std::size_t width_of(const text_column& column, std::size_t limit) {
    std::size_t width = length_of(column.heading);
    for (const std::string& cell : column.cells) {
        width = std::max(width, std::min(length_of(cell), limit));
    }
    return width;
}

std::vector<std::size_t> natural_widths(const std::vector<text_column>& columns, std::size_t limit) {
    std::vector<std::size_t> widths;
    std::transform(columns.begin(), columns.end(), std::back_inserter(widths),
                   [limit](const text_column& column) { return width_of(column, limit); });
    return widths;
}

std::size_t line_width(const std::vector<std::size_t>& widths) {
    std::size_t sum = 0;
    for (const std::size_t width : widths) {
        sum += width + gap_width;
    }
    return sum - gap_width;
}

// Takes from the widest columns until the line fits or nothing can be spared.
void fit(std::vector<std::size_t>& widths, const std::vector<text_column>& columns, std::size_t available) {
    for (std::size_t width = line_width(widths); width > available; --width) {
        std::size_t* widest = nullptr;
        for (std::size_t i = 0; i < widths.size(); ++i) {
            if (columns[i].may_shrink && widths[i] > narrowest && (widest == nullptr || widths[i] > *widest)) {
                widest = &widths[i];
            }
        }
        if (widest == nullptr) {
            return;
        }
        --*widest;
    }
}

std::string padded(const std::string& cell, std::size_t width, alignment aligned) {
    const std::string blanks(width - std::min(width, length_of(cell)), ' ');
    return aligned == alignment::left ? cell + blanks : blanks + cell;
}

template <class CellOf>
std::string line(const std::vector<text_column>& columns, const std::vector<std::size_t>& widths,
                 const text_style& style, CellOf cell_of) {
    std::string text;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string cell = cell_of(columns[i]);
        const bool may_be_cut = style.width != 0 && columns[i].may_shrink;
        text += (i == 0 ? "" : gap) +
                padded(may_be_cut ? cut_text(cell, widths[i], style) : cell, widths[i], columns[i].aligned);
    }
    return text.erase(text.find_last_not_of(' ') + 1);
}

}  // namespace

text_style output_style() {
    text_style style;
    style.utf8 = is_terminal(STDOUT_FILENO) && std::string(::nl_langinfo(CODESET)) == "UTF-8";
    if (is_styled(STDOUT_FILENO)) {
        style.has_control_sequences = true;
        style.width = terminal_width(STDOUT_FILENO);
    }
    return style;
}

std::string cut_text(const std::string& text, std::size_t width, const text_style& style) {
    return length_of(text) <= width ? text : first_characters(text, width - 1) + (style.utf8 ? "\u2026" : "~");
}

std::string heading_text(const std::string& heading, const text_style& style) {
    return style.has_control_sequences ? "\033[1m" + heading + "\033[0m" : heading;
}

std::string table_text(const std::vector<text_column>& columns, const text_style& style) {
    std::vector<std::size_t> widths = natural_widths(columns, std::max(longest_aligned, style.width));
    if (style.width != 0) {
        fit(widths, columns, style.width);
    }
    std::string text =
        heading_text(line(columns, widths, style, [](const text_column& column) { return column.heading; }), style) +
        '\n';
    for (std::size_t row = 0; row < columns.front().cells.size(); ++row) {
        text += line(columns, widths, style, [row](const text_column& column) { return column.cells[row]; }) + '\n';
    }
    return text;
}
