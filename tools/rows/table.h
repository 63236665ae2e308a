// SPDX-License-Identifier: Apache-2.0

/// The rows of an inventory.
#ifndef TOOLS_ROWS_TABLE_H
#define TOOLS_ROWS_TABLE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "rows/kinds.h"

/// One column of one row; std::monostate is a column that was never put. Numbers that are signed in the database but
/// stand for unsigned 64-bit ones are unsigned here; text is always UTF-8.
using inventory_value = std::variant<std::monostate, std::int64_t, std::uint64_t, std::string>;

/// The rows of one kind, first row id first, with every column of the table.
struct inventory_table {
    const inventory_kind* kind;
    std::vector<std::string> columns;
    std::vector<std::vector<inventory_value>> rows;
};

/// Whether the value was put.
bool is_put(const inventory_value& value);

/// Null unless the value is text.
const std::string* text_in(const inventory_value& value);

/// The number in a value with all its bits; nothing unless it is one.
std::optional<std::uint64_t> number_in(const inventory_value& value);

/// Where the column of that name stands in the table's rows, if it does.
std::optional<std::size_t> find_column(const inventory_table& table, const std::string& name);

/// One row of a table by column name.
class inventory_row {
public:
    /// The row at that place. Refers to the table.
    inventory_row(const inventory_table& table, std::size_t place) : table_(&table), place_(place) {}

    const inventory_kind& kind() const { return *table_->kind; }
    std::size_t place() const { return place_; }

    /// A column that the table does not have was never put.
    const inventory_value& operator[](const std::string& column) const;

    /// One value for each of the columns.
    std::vector<inventory_value> values(const std::vector<std::string>& columns) const;

private:
    const inventory_table* table_;
    std::size_t place_;
};

/// Takes away all columns but those of these names, which stand in their order then; names that the table does not have
/// are passed over.
void keep_columns(inventory_table& table, const std::vector<std::string>& names);

#endif
