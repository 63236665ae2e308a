// SPDX-License-Identifier: Apache-2.0

/// Which row of one inventory is which row of another.
#ifndef TOOLS_DIFFERENCE_ROW_MATCHING_H
#define TOOLS_DIFFERENCE_ROW_MATCHING_H

#include <cstddef>
#include <vector>

#include "rows/table.h"

/// Rows by their place in a table.
struct row_pair {
    std::size_t old_row;
    std::size_t new_row;
};

/// Rows of both inventories that have something in common.
struct row_group {
    std::vector<std::size_t> old_rows;
    std::vector<std::size_t> new_rows;
};

/// Every row of the old table is in one pair or removed, every row of the new one in one pair or added.
struct row_matching {
    std::vector<row_pair> kept;         ///< one identity; by new row
    std::vector<row_pair> moved;        ///< one serial number, two identities; by new row
    std::vector<std::size_t> removed;   ///< old rows
    std::vector<std::size_t> added;     ///< new rows
    std::vector<row_group> collisions;  ///< of one identity, several in one inventory, so that their order had to do
    std::vector<row_group> ambiguous;   ///< of one serial number, several in one inventory, so that a move is not known
};

/// Matches two tables of one kind.
row_matching match_rows(const inventory_table& old_table, const inventory_table& new_table);

#endif
