// SPDX-License-Identifier: Apache-2.0

/// What differs between two inventories.
#ifndef TOOLS_DIFFERENCE_DIFFERENCE_H
#define TOOLS_DIFFERENCE_DIFFERENCE_H

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "difference/comparable_tables.h"
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

/// Two inventories beside each other.
struct comparison {
    std::vector<table_difference> kinds;
    /// The node of each side, where all rows of either stand at one and these differ: it was left out then.
    std::optional<std::pair<node_index, node_index>> ignored_nodes;
    std::vector<std::string> ignored_columns;
    bool differs_in_ignored = false;  ///< that is all that differs

    bool is_same() const;
};

/// The tables are those of all kinds, in one order. Columns of the names `ignored` are left out.
comparison compare(const std::vector<inventory_table>& old_tables, const std::vector<inventory_table>& new_tables,
                   const std::vector<std::string>& ignored = {});

#endif
