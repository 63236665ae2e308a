// SPDX-License-Identifier: Apache-2.0

/// The rows of an inventory database.
#ifndef TOOLS_SOURCES_INVENTORY_H
#define TOOLS_SOURCES_INVENTORY_H

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "rows/kinds.h"
#include "rows/table.h"
#include "sources/connection.h"
#include "sources/source_record.h"

/// How the user named a database. Where it was by --database, messages say so.
enum class database_naming { option, argument };

/// A database as it is at the moment of opening; it is never written to.
class inventory {
public:
    /// The memory that the rows of one table may take, far more than those of any server. A damaged database may lead
    /// from any of its pages to any other, and so to rows without end.
    static constexpr std::size_t most_bytes = std::size_t{512} << 20;

    /// Throws failure when there is no readable inventory at `path`, as do the readers below, also for larger tables.
    explicit inventory(const std::string& path, database_naming naming = database_naming::option,
                       std::size_t largest_table = most_bytes);

    /// Takes over an open connection; messages call the inventory `title`.
    inventory(std::string title, sqlite3* connection);

    /// A value that stands for an absent one is none.
    inventory_table read(const inventory_kind& kind) const;
    /// The tables of all kinds, in their order.
    std::vector<inventory_table> read_all() const;
    /// Only the rows with an id above `id`, with every value as it is stored. Costs little when asked again.
    inventory_table read_after(const inventory_kind& kind, std::int64_t id) const;
    std::int64_t count(const inventory_kind& kind) const;

    /// What the rows were loaded from, where that is noted.
    std::optional<source_record> source() const;

private:
    struct finalizer {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using statement_ptr = std::unique_ptr<sqlite3_stmt, finalizer>;

    // Whole rows that are selected, and what is known of their columns.
    struct selection {
        statement_ptr rows;
        std::vector<std::string> columns;
        std::vector<bool> are_unsigned;
    };

    int open();
    void refuse_newer_version() const;
    void refuse_computed_columns(const inventory_kind& kind) const;
    statement_ptr prepare(const std::string& sql) const;
    statement_ptr select(const std::string& what, const inventory_kind& kind, const std::string& condition = "") const;
    selection select_rows(const inventory_kind& kind, const std::string& condition = "") const;
    inventory_table table_of(const inventory_kind& kind, const selection& selected) const;
    bool step(const statement_ptr& statement) const;
    [[noreturn]] void fail() const;

    std::string path_;
    std::string title_;
    database_naming naming_;
    std::size_t largest_table_ = most_bytes;
    connection_ptr connection_;
    mutable std::map<const inventory_kind*, selection> later_rows_;  // for read_after()
};

#endif
