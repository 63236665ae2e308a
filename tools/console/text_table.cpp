// SPDX-License-Identifier: Apache-2.0

#include "console/text_table.h"

#include <langinfo.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "console/output.h"
#include "console/utf8.h"
#include "console/wrapping.h"

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

// Takes from the widest columns until the line fits; false when nothing is left to take.
bool fit(std::vector<std::size_t>& widths, const std::vector<text_column>& columns, std::size_t available) {
    for (std::size_t width = line_width(widths); width > available; --width) {
        std::size_t* widest = nullptr;
        for (std::size_t i = 0; i < widths.size(); ++i) {
            const std::size_t least = std::max(narrowest, length_of(columns[i].heading));
            if (columns[i].may_wrap && widths[i] > least && (widest == nullptr || widths[i] > *widest)) {
                widest = &widths[i];
            }
        }
        if (widest == nullptr) {
            return false;
        }
        --*widest;
    }
    return true;
}

std::string padded(const std::string& cell, std::size_t width, alignment aligned) {
    const std::string blanks(width - std::min(width, length_of(cell)), ' ');
    return aligned == alignment::left ? cell + blanks : blanks + cell;
}

std::string without_blanks_behind(std::string text) {
    return text.erase(text.find_last_not_of(' ') + 1);
}

std::string heading_line(const std::vector<text_column>& columns, const std::vector<std::size_t>& widths) {
    std::string text;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        text += (i == 0 ? "" : gap) + padded(columns[i].heading, widths[i], columns[i].aligned);
    }
    return without_blanks_behind(text);
}

std::vector<std::string> lines_of_cell(const text_column& column, std::size_t row, std::size_t width, bool wraps) {
    const std::string& cell = column.cells[row];
    return wraps && column.may_wrap ? wrapped(cell, width) : std::vector<std::string>{cell};
}

std::string row_lines(const std::vector<text_column>& columns, const std::vector<std::size_t>& widths, std::size_t row,
                      bool wraps) {
    std::vector<std::vector<std::string>> cells;
    std::size_t height = 0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        cells.push_back(lines_of_cell(columns[i], row, widths[i], wraps));
        height = std::max(height, cells.back().size());
    }
    std::string text;
    for (std::size_t line = 0; line < height; ++line) {
        std::string shown;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            shown += (i == 0 ? "" : gap) +
                     padded(line < cells[i].size() ? cells[i][line] : "", widths[i], columns[i].aligned);
        }
        text += without_blanks_behind(shown) + '\n';
    }
    return text;
}

std::string lines_below(const std::vector<std::string>& lines, const std::string& first, const std::string& others) {
    std::string text;
    for (const std::string& line : lines) {
        text += without_blanks_behind((text.empty() ? first : others) + line) + '\n';
    }
    return text;
}

// A heading and a cell a line; where there is no room beside the headings, the cell stands below its own.
std::string block(const std::vector<text_column>& columns, std::size_t row, std::size_t available) {
    constexpr std::size_t indent = 2;
    std::size_t name_width = 0;
    for (const text_column& column : columns) {
        name_width = std::max(name_width, length_of(column.heading));
    }
    const bool beside = name_width + gap_width + narrowest <= available;
    const std::size_t left = beside ? available - name_width - gap_width : std::max(available, indent + 1) - indent;
    const std::string below(beside ? name_width + gap_width : indent, ' ');
    std::string text;
    for (const text_column& column : columns) {
        const std::vector<std::string> lines = wrapped(column.cells[row], left);
        text += beside ? lines_below(lines, padded(column.heading, name_width, alignment::left) + gap, below)
                       : column.heading + '\n' + lines_below(lines, below, below);
    }
    return text;
}

std::string blocks(const std::vector<text_column>& columns, std::size_t available) {
    std::string text;
    for (std::size_t row = 0; row < columns.front().cells.size(); ++row) {
        text += (row == 0 ? "" : "\n") + block(columns, row, available);
    }
    return text;
}

std::size_t width_in_environment() {
    const char* columns = std::getenv("COLUMNS");
    const bool is_number = columns != nullptr && std::strspn(columns, "0123456789") == std::strlen(columns);
    return is_number ? std::strtoul(columns, nullptr, 10) : 0;
}

}  // namespace

text_style output_style() {
    text_style style;
    style.utf8 = is_terminal(STDOUT_FILENO) && std::string(::nl_langinfo(CODESET)) == "UTF-8";
    style.has_control_sequences = is_styled(STDOUT_FILENO);
    const std::size_t wanted = width_in_environment();
    style.width = wanted != 0 ? wanted : terminal_width(STDOUT_FILENO);
    return style;
}

std::string heading_text(const std::string& heading, const text_style& style) {
    return style.has_control_sequences ? "\033[1m" + heading + "\033[0m" : heading;
}

std::string table_text(const std::vector<text_column>& columns, const text_style& style) {
    std::vector<std::size_t> widths = natural_widths(columns, std::max(longest_aligned, style.width));
    const bool wraps = style.width != 0;
    if (wraps && !fit(widths, columns, style.width)) {
        return blocks(columns, style.width);
    }
    std::string text = heading_text(heading_line(columns, widths), style) + '\n';
    for (std::size_t row = 0; row < columns.front().cells.size(); ++row) {
        text += row_lines(columns, widths, row, wraps);
    }
    return text;
}
