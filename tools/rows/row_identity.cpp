#include "rows/row_identity.h"

#include <algorithm>
#include <map>

const row_identity& identity_of(const inventory_kind& kind) {
    static const std::map<std::string, row_identity> identities = {
        {"processors", {{"NodeIndex", "Socket"}, {}}},
        {"memory", {{"NodeIndex", "DevLocator", "BankLocator"}, {}}},
        {"bridges", {{"NodeIndex", "SegNo", "BusNo", "DevNo", "FunNo"}, {"SegNo", "BusNo", "DevNo", "FunNo"}}},
        {"devices", {{"NodeIndex", "FunKey"}, {"FunKey"}}},
    };
    return identities.at(kind.name);
}

std::optional<std::size_t> find_column(const inventory_table& table, const std::string& name) {
    const auto found = std::find(table.columns.begin(), table.columns.end(), name);
    if (found == table.columns.end()) {
        return std::nullopt;
    }
    return found - table.columns.begin();
}

std::vector<inventory_value> values_of(const inventory_table& table, std::size_t row,
                                       const std::vector<std::string>& columns) {
    std::vector<inventory_value> values;
    for (const std::string& name : columns) {
        const auto column = find_column(table, name);
        values.push_back(column ? table.rows[row][*column] : inventory_value());
    }
    return values;
}
