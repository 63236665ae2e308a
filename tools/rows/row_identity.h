/// What makes two rows of a kind the same, whatever their row ids.
#ifndef TOOLS_ROWS_ROW_IDENTITY_H
#define TOOLS_ROWS_ROW_IDENTITY_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "sources/inventory.h"

struct row_identity {
    /// Which part a row is about: where it sits, or its address.
    std::vector<std::string> columns;
    /// What is left of `columns` when a server's index was changed. Empty where the rest says too little.
    std::vector<std::string> columns_without_node;
};

const row_identity& identity_of(const inventory_kind& kind);

/// Where the column of that name stands in the table's rows, if it does.
std::optional<std::size_t> find_column(const inventory_table& table, const std::string& name);

/// One value for each of the columns; one that the table does not have was never put.
std::vector<inventory_value> values_of(const inventory_table& table, std::size_t row,
                                       const std::vector<std::string>& columns);

#endif
