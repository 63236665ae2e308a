#include <nlohmann/json.hpp>

#include "inventory_formats.h"

namespace {

using json = nlohmann::ordered_json;

// Raised when a program that reads today's output would misread tomorrow's.
constexpr int schema = 1;

struct to_json_value {
    json operator()(std::monostate) const { return nullptr; }
    template <class Held>
    json operator()(const Held& held) const {
        return held;
    }
};

json row_json(const inventory_table& table, const std::vector<inventory_value>& row) {
    json object = json::object();
    for (std::size_t column = 0; column < row.size(); ++column) {
        object[table.columns[column]] = std::visit(to_json_value(), row[column]);
    }
    return object;
}

}  // namespace

std::string inventory_json(const std::vector<inventory_table>& tables) {
    json document = {{"schema", schema}};
    for (const inventory_table& table : tables) {
        json& rows = document[table.kind->name] = json::array();
        for (const std::vector<inventory_value>& row : table.rows) {
            rows.push_back(row_json(table, row));
        }
    }
    return document.dump(2) + '\n';
}
