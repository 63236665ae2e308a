// SPDX-License-Identifier: Apache-2.0

#include "difference/comparable_tables.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "rows/kinds.h"
#include "rows/redaction.h"
#include "rows/row_text.h"
#include "rows/table.h"

namespace {

using addresses = std::map<inventory_value, std::string>;  // by row id

// Columns that hold the row id of a bridge.
constexpr const char* references[] = {"ParentId", "BridgeId", "ArrayId"};

constexpr const char* id_column = "Id";
constexpr const char* node_column = "NodeIndex";
constexpr const char* card_key_column = "DevKey";
constexpr std::uint64_t card_key_without_node = 0x00FFFFFF;
constexpr const char* missing_bridge = "missing";  // an id that no bridge has

addresses bridge_addresses(const std::vector<inventory_table>& tables) {
    const auto bridges = std::find_if(tables.begin(), tables.end(),
                                      [](const inventory_table& table) { return table.kind == &kinds::bridges; });
    addresses found;
    if (bridges == tables.end()) {
        return found;
    }
    for (std::size_t place = 0; place < bridges->rows.size(); ++place) {
        const inventory_row row(*bridges, place);
        found[row[id_column]] = row_texts::bridge_address(row);
    }
    return found;
}

inventory_value address_for(const inventory_value& id, const addresses& bridges) {
    if (!is_put(id)) {
        return {};
    }
    const auto bridge = bridges.find(id);
    return bridge == bridges.end() ? missing_bridge : bridge->second;
}

void replace_reference(inventory_table& table, const char* name, const addresses& bridges) {
    const auto column = find_column(table, name);
    if (!column) {
        return;
    }
    for (std::vector<inventory_value>& row : table.rows) {
        row[*column] = address_for(row[*column], bridges);
    }
}

void remove_column(inventory_table& table, const std::string& name) {
    const auto column = find_column(table, name);
    if (!column) {
        return;
    }
    const auto place = static_cast<std::ptrdiff_t>(*column);
    table.columns.erase(table.columns.begin() + place);
    for (std::vector<inventory_value>& row : table.rows) {
        row.erase(row.begin() + place);
    }
}

void add_missing_columns(inventory_table& table, const std::vector<std::string>& names) {
    std::copy_if(names.begin(), names.end(), std::back_inserter(table.columns),
                 [&table](const std::string& name) { return !find_column(table, name); });
    for (std::vector<inventory_value>& row : table.rows) {
        row.resize(table.columns.size());
    }
}

inventory_table reordered(const inventory_table& table, const std::vector<std::string>& columns) {
    inventory_table result{table.kind, columns, {}};
    for (std::size_t row = 0; row < table.rows.size(); ++row) {
        result.rows.push_back(inventory_row(table, row).values(columns));
    }
    return result;
}

// The node that all rows stand at, or nothing when they stand at several or there are none.
std::optional<node_index> only_node(const std::vector<inventory_table>& tables) {
    std::optional<node_index> node;
    for (const inventory_table& table : tables) {
        for (std::size_t place = 0; place < table.rows.size(); ++place) {
            const node_index here = number_in(inventory_row(table, place)[node_column]);
            if (node && *node != here) {
                return std::nullopt;
            }
            node.emplace(here);
        }
    }
    return node;
}

// Its column, and its part of the keys of cards.
void forget_node(std::vector<inventory_table>& tables) {
    for (inventory_table& table : tables) {
        for (std::vector<inventory_value>& row : table.rows) {
            if (const auto node = find_column(table, node_column)) {
                row[*node] = {};
            }
            const auto key = find_column(table, card_key_column);
            if (const auto number = key ? number_in(row[*key]) : std::nullopt) {
                row[*key] = static_cast<std::int64_t>(*number & card_key_without_node);
            }
        }
    }
}

}  // namespace

void replace_row_ids(std::vector<inventory_table>& tables) {
    const addresses bridges = bridge_addresses(tables);
    for (inventory_table& table : tables) {
        for (const char* each : references) {
            replace_reference(table, each, bridges);
        }
        remove_column(table, id_column);
    }
}

void align_columns(inventory_table& first, inventory_table& second) {
    add_missing_columns(first, second.columns);
    second = reordered(second, first.columns);
}

std::vector<std::string> ignored_columns(const std::string& name) {
    if (name == "serials") {
        return {std::begin(identifying_columns), std::end(identifying_columns)};
    }
    return {name};
}

void remove_columns(std::vector<inventory_table>& tables, const std::vector<std::string>& names) {
    if (std::find(names.begin(), names.end(), node_column) != names.end()) {
        forget_node(tables);  // the keys of cards hold it, too
    }
    for (inventory_table& table : tables) {
        for (const std::string& name : names) {
            remove_column(table, name);
        }
    }
}

std::optional<std::pair<node_index, node_index>> forget_differing_nodes(std::vector<inventory_table>& first,
                                                                        std::vector<inventory_table>& second) {
    const auto first_node = only_node(first);
    const auto second_node = only_node(second);
    if (!first_node || !second_node || *first_node == *second_node) {
        return std::nullopt;
    }
    forget_node(first);
    forget_node(second);
    return std::pair(*first_node, *second_node);
}
