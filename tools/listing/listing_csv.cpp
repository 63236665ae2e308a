// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

#include "listing/listing_formats.h"
#include "rows/table.h"

namespace {

constexpr const char* line_end = "\r\n";

std::string quoted(const std::string& text) {
    std::string field = "\"";
    for (const char character : text) {
        field.append(character == '"' ? 2 : 1, character);
    }
    return field + '"';
}

struct to_field {
    std::string operator()(std::monostate) const { return ""; }
    std::string operator()(const std::string& text) const {
        return text.empty() || text.find_first_of(",\"\r\n") != std::string::npos ? quoted(text) : text;
    }
    template <class Number>
    std::string operator()(Number number) const {
        return std::to_string(number);
    }
};

}  // namespace

std::string listing_csv(const std::vector<inventory_table>& tables) {
    const inventory_table& table = tables.front();
    std::string text;
    for (const std::string& column : table.columns) {
        text += (text.empty() ? "" : ",") + to_field()(column);
    }
    for (const std::vector<inventory_value>& row : table.rows) {
        text += line_end;
        for (std::size_t column = 0; column < row.size(); ++column) {
            text += (column == 0 ? "" : ",") + std::visit(to_field(), row[column]);
        }
    }
    return text + line_end;
}
