// SPDX-License-Identifier: Apache-2.0

/// Inventories without what differs between them although the hardware is the same.
#ifndef TOOLS_DIFFERENCE_COMPARABLE_TABLES_H
#define TOOLS_DIFFERENCE_COMPARABLE_TABLES_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "rows/table.h"

/// Takes the row ids out of the tables of one inventory: the column that holds a row's own, and those that hold a
/// bridge's hold the address of that bridge instead; such a column is as if never put in a row that is behind no
/// bridge.
void replace_row_ids(std::vector<inventory_table>& tables);

/// Gives both tables the columns of either, those of `first` in front, in the same order.
void align_columns(inventory_table& first, inventory_table& second);

/// What a name in a list of ignored columns stands for: "serials" for serial numbers and asset tags, else itself.
std::vector<std::string> ignored_columns(const std::string& name);

/// Takes the columns of these names out of all tables.
void remove_columns(std::vector<inventory_table>& tables, const std::vector<std::string>& names);

/// Where a part stands; nothing where no main server stands before it.
using node_index = std::optional<std::uint64_t>;

/// Takes the node out of all rows where those of either inventory stand at one and these differ, and gives both.
std::optional<std::pair<node_index, node_index>> forget_differing_nodes(std::vector<inventory_table>& first,
                                                                        std::vector<inventory_table>& second);

#endif
