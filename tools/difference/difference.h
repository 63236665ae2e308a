// SPDX-License-Identifier: Apache-2.0

/// What differs between two inventories.
#ifndef TOOLS_DIFFERENCE_DIFFERENCE_H
#define TOOLS_DIFFERENCE_DIFFERENCE_H

#include <cstddef>
#include <vector>

#include "difference/row_matching.h"
#include "rows/table.h"

/// One part as it was and as it is, and the columns that differ.
struct row_change {
    row_pair rows;
    std::vector<std::size_t> columns;
};

/// Of one kind. Both tables have the same columns in the same order, without row ids, see replace_row_ids().
struct table_difference {
    inventory_table old_table;
    inventory_table new_table;
    row_matching rows;
    std::vector<row_change> changed;  ///< of the rows that were kept, those that differ in at least one column
    std::vector<row_change> moved;    ///< the rows that moved; the columns are those that changed besides

    bool is_same() const;
};

/// The tables are those of all kinds, in one order.
std::vector<table_difference> compare(std::vector<inventory_table> old_tables, std::vector<inventory_table> new_tables);

bool is_same(const std::vector<table_difference>& differences);

#endif
