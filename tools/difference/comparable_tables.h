// SPDX-License-Identifier: Apache-2.0

/// Inventories without what differs between them although the hardware is the same.
#ifndef TOOLS_DIFFERENCE_COMPARABLE_TABLES_H
#define TOOLS_DIFFERENCE_COMPARABLE_TABLES_H

#include <vector>

#include "rows/table.h"

/// Takes the row ids out of the tables of one inventory: the column that holds a row's own, and those that hold a
/// bridge's hold the address of that bridge instead; such a column is as if never put in a row that is behind no
/// bridge.
void replace_row_ids(std::vector<inventory_table>& tables);

/// Gives both tables the columns of either, those of `first` in front, in the same order.
void align_columns(inventory_table& first, inventory_table& second);

#endif
