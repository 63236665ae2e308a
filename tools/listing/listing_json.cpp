#include "listing/listing_formats.h"
#include "rows/value_json.h"

namespace {

using json = nlohmann::ordered_json;

// Raised when a program that reads today's output would misread tomorrow's.
constexpr int schema = 1;

json row_json(const inventory_table& table, const std::vector<inventory_value>& row) {
    json object = json::object();
    for (std::size_t column = 0; column < row.size(); ++column) {
        object[table.columns[column]] = value_json(row[column]);
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
