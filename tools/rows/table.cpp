// SPDX-License-Identifier: Apache-2.0

#include "rows/table.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

bool is_put(const inventory_value& value) {
    return !std::holds_alternative<std::monostate>(value);
}

const std::string* text_in(const inventory_value& value) {
    return std::get_if<std::string>(&value);
}

std::optional<std::uint64_t> number_in(const inventory_value& value) {
    if (const auto* number = std::get_if<std::uint64_t>(&value)) {
        return *number;
    }
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return static_cast<std::uint64_t>(*number);
    }
    return std::nullopt;
}

std::optional<std::size_t> find_column(const inventory_table& table, const std::string& name) {
    const auto found = std::find(table.columns.begin(), table.columns.end(), name);
    if (found == table.columns.end()) {
        return std::nullopt;
    }
    return found - table.columns.begin();
}

const inventory_value& inventory_row::operator[](const std::string& column) const {
    static const inventory_value never_put;
    const auto found = find_column(*table_, column);
    return found ? table_->rows[place_][*found] : never_put;
}

std::vector<inventory_value> inventory_row::values(const std::vector<std::string>& columns) const {
    std::vector<inventory_value> values;
    std::transform(columns.begin(), columns.end(), std::back_inserter(values),
                   [this](const std::string& column) { return (*this)[column]; });
    return values;
}

void keep_columns(inventory_table& table, const std::vector<std::string>& names) {
    std::vector<std::string> kept;
    std::copy_if(names.begin(), names.end(), std::back_inserter(kept),
                 [&table](const std::string& name) { return find_column(table, name).has_value(); });
    std::vector<std::vector<inventory_value>> rows;
    rows.reserve(table.rows.size());
    for (std::size_t place = 0; place < table.rows.size(); ++place) {
        rows.push_back(inventory_row(table, place).values(kept));
    }
    table.rows = std::move(rows);
    table.columns = std::move(kept);
}
