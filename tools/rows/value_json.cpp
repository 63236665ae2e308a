// SPDX-License-Identifier: Apache-2.0

#include "rows/value_json.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "console/utf8.h"
#include "rows/table.h"

using json = nlohmann::ordered_json;

json value_json(const inventory_value& value) {
    struct writer {
        json operator()(std::monostate) const { return nullptr; }
        json operator()(std::int64_t number) const { return number; }
        json operator()(std::uint64_t number) const { return number; }
        json operator()(const std::string& text) const { return text; }
    };
    return std::visit(writer(), value);
}

json row_json(const inventory_table& table, std::size_t place) {
    const std::vector<inventory_value>& row = table.rows[place];
    json object = json::object();
    for (std::size_t column = 0; column < row.size(); ++column) {
        object[table.columns[column]] = value_json(row[column]);
    }
    return object;
}

std::string json_line(const json& document) {
    return harmless_json(document.dump(-1, ' ', false, json::error_handler_t::replace)) + '\n';
}

std::string json_text(const json& document) {
    return harmless_json(document.dump(2, ' ', false, json::error_handler_t::replace)) + '\n';
}
