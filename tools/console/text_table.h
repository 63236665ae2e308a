// SPDX-License-Identifier: Apache-2.0

/// Columns of text under headings.
#ifndef TOOLS_CONSOLE_TEXT_TABLE_H
#define TOOLS_CONSOLE_TEXT_TABLE_H

#include <cstddef>
#include <string>
#include <vector>

enum class alignment { left, right };

struct text_column {
    std::string heading;
    alignment aligned;
    bool may_wrap;  ///< its cells may take several lines where one is too long
    std::vector<std::string> cells;
};

/// How text looks where it goes.
struct text_style {
    bool has_control_sequences = false;  ///< for bold and coloured text
    std::size_t width = 0;               ///< of a line; 0 for any
    bool utf8 = false;                   ///< whether more than ASCII may be added to the data
};

/// The style for what is printed to standard output.
text_style output_style();

std::string heading_text(const std::string& heading, const text_style& style);

/// The lines of a table, aligned by characters. Cells are UTF-8. Where a line does not fit, cells that may wrap take
/// several lines; where that is not enough, each row is a block of lines with a heading and a cell. Nothing is left
/// out.
std::string table_text(const std::vector<text_column>& columns, const text_style& style);

#endif
