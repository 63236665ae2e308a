/// How one column of an inventory row is written in JSON.
#ifndef TOOLS_ROWS_VALUE_JSON_H
#define TOOLS_ROWS_VALUE_JSON_H

#include <nlohmann/json.hpp>

#include "sources/inventory.h"

/// Raw: a number as a number, null for a column that was never put.
inline nlohmann::ordered_json value_json(const inventory_value& value) {
    struct writer {
        nlohmann::ordered_json operator()(std::monostate) const { return nullptr; }
        nlohmann::ordered_json operator()(std::int64_t number) const { return number; }
        nlohmann::ordered_json operator()(std::uint64_t number) const { return number; }
        nlohmann::ordered_json operator()(const std::string& text) const { return text; }
    };
    return std::visit(writer(), value);
}

#endif
