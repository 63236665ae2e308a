/// The rows of an inventory database.
#ifndef TOOLS_SOURCES_INVENTORY_H
#define TOOLS_SOURCES_INVENTORY_H

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

/// A kind of row: what it is called on the command line and in JSON, and the table that holds it.
struct inventory_kind {
    const char* name;
    const char* title;
    const char* table;
};

inline constexpr inventory_kind inventory_kinds[] = {
    {"processors", "Processors", "Processor"},
    {"memory", "Memory", "Memory"},
    {"bridges", "Bridges", "PCIBridge"},
    {"devices", "Devices", "PCIs"},
};

/// One column of one row; std::monostate is a column that was never put. Numbers that are signed in the database but
/// stand for unsigned 64-bit ones are unsigned here; text is always UTF-8.
using inventory_value = std::variant<std::monostate, std::int64_t, std::uint64_t, std::string>;

/// The rows of one kind, first row id first, with every column of the table.
struct inventory_table {
    const inventory_kind* kind;
    std::vector<std::string> columns;
    std::vector<std::vector<inventory_value>> rows;
};

/// Puts a placeholder in place of every serial number and asset tag.
void redact(inventory_table& table);

/// How the user named a database. Where it was by --database, messages say so.
enum class database_naming { option, argument };

/// A database as it is at the moment of opening; it is never written to.
class inventory {
public:
    /// Throws failure when there is no readable inventory at `path`.
    explicit inventory(const std::string& path, database_naming naming = database_naming::option);

    /// Takes over an open connection; messages call the inventory `title`.
    inventory(std::string title, sqlite3* connection);

    inventory_table read(const inventory_kind& kind) const;
    /// Only the rows with an id above `id`.
    inventory_table read_after(const inventory_kind& kind, std::int64_t id) const;
    std::int64_t count(const inventory_kind& kind) const;

private:
    struct closer {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };
    struct finalizer {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using statement_ptr = std::unique_ptr<sqlite3_stmt, finalizer>;

    int open();
    statement_ptr select(const std::string& what, const inventory_kind& kind, const std::string& condition = "") const;
    inventory_table table_of(const inventory_kind& kind, const statement_ptr& rows) const;
    bool step(const statement_ptr& statement) const;
    [[noreturn]] void fail() const;

    std::string path_;
    std::string title_;
    database_naming naming_;
    std::unique_ptr<sqlite3, closer> connection_;
};

#endif
