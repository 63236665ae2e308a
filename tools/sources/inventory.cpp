// SPDX-License-Identifier: Apache-2.0

#include "sources/inventory.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <zeb_db_workstation.h>

#include "cds_parser/record_columns.h"
#include "console/failure.h"
#include "console/output.h"
#include "console/utf8.h"
#include "rows/fields.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "rows/table.h"
#include "sources/database_file.h"
#include "sources/source_record.h"

namespace {

constexpr int busy_timeout_ms = 5000;

bool is_unsigned(const inventory_kind& kind, const std::string& name) {
    const std::vector<cds_parser::column>& columns = kind.description().recorded;
    return std::any_of(columns.begin(), columns.end(), [&name](const cds_parser::column& column) {
        return column.name == name && column.type == cds_parser::column_type::uint64;
    });
}

// SQLite gives no text for nothing, and for want of memory.
std::string text_at(sqlite3_stmt* row, int column) {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    const auto length = static_cast<std::size_t>(sqlite3_column_bytes(row, column));
    if (bytes == nullptr && sqlite3_errcode(sqlite3_db_handle(row)) == SQLITE_NOMEM) {
        throw std::bad_alloc();
    }
    return bytes == nullptr ? std::string() : std::string(bytes, length);
}

std::string name_of(sqlite3_stmt* row, int column) {
    const char* name = sqlite3_column_name(row, column);
    if (name == nullptr) {
        throw std::bad_alloc();
    }
    return repaired_utf8(name);
}

inventory_value value_at(sqlite3_stmt* row, int column, bool is_unsigned) {
    switch (sqlite3_column_type(row, column)) {
        case SQLITE_NULL:
            return {};
        case SQLITE_INTEGER: {
            const std::int64_t number = sqlite3_column_int64(row, column);
            return is_unsigned ? inventory_value(static_cast<std::uint64_t>(number)) : number;
        }
        default:
            return repaired_utf8(text_at(row, column));
    }
}

std::size_t bytes_of(const inventory_value& value) {
    const auto* text = std::get_if<std::string>(&value);
    return sizeof value + (text == nullptr ? 0 : text->size());
}

// Ends the reading of a statement's rows, so that nobody has to wait for it.
class statement_to_end {
public:
    explicit statement_to_end(sqlite3_stmt* statement) : statement_(statement) {}
    ~statement_to_end() { sqlite3_reset(statement_); }
    statement_to_end(const statement_to_end&) = delete;
    statement_to_end& operator=(const statement_to_end&) = delete;

private:
    sqlite3_stmt* statement_;
};

// Whoever made it: what stands in it runs no functions but harmless ones, and a table is no view, which may be without
// end.
void distrust_schema(sqlite3* connection) {
    sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
}

}  // namespace

inventory::inventory(const std::string& path, database_naming naming, std::size_t largest_table)
    : path_(path), title_(in_quotes(path)), naming_(naming), largest_table_(largest_table) {
    require_database_file(path);
    if (open() == SQLITE_READONLY_ROLLBACK) {
        refuse_foreign_database(path);
        roll_back_interrupted_write(path);
        open();
    }
    if (sqlite3_errcode(connection_.get()) != SQLITE_OK) {
        fail();
    }
    refuse_newer_version();
}

inventory::inventory(std::string title, sqlite3* connection)
    : title_(std::move(title)), naming_(database_naming::argument), connection_(connection) {
    distrust_schema(connection);
    refuse_newer_version();
}

// What cannot be asked for its version is refused when it is read.
void inventory::refuse_newer_version() const {
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(connection_.get(), "PRAGMA user_version", -1, &prepared, nullptr);
    const statement_ptr row(prepared);
    const int known = zeb_db_schema_version();
    if (sqlite3_step(row.get()) == SQLITE_ROW && sqlite3_column_int(row.get(), 0) > known) {
        throw failure("cannot read " + title_ + ": it was made by a newer version (its schema is version " +
                      std::to_string(sqlite3_column_int(row.get(), 0)) + ", this one knows " + std::to_string(known) +
                      " and earlier); use that version or another database");
    }
}

// Opens the database and holds it as it is now: a transaction begins with the first reading.
int inventory::open() {
    sqlite3* connection = nullptr;
    const int rc = sqlite3_open_v2(sqlite_name(path_).c_str(), &connection, SQLITE_OPEN_READONLY, nullptr);
    connection_.reset(connection);
    if (rc == SQLITE_OK) {
        sqlite3_busy_timeout(connection, busy_timeout_ms);
        distrust_schema(connection);
        sqlite3_exec(connection, "BEGIN; SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
    }
    return sqlite3_extended_errcode(connection);
}

// Their values are worked out for each row that is read, which may take any time and any memory.
void inventory::refuse_computed_columns(const inventory_kind& kind) const {
    const statement_ptr rows =
        prepare(std::string("SELECT name FROM pragma_table_xinfo('") + kind.record.table + "') WHERE hidden <> 0");
    if (step(rows)) {
        throw failure("cannot read " + title_ + ": the column " + in_quotes(text_at(rows.get(), 0)) + " of its table " +
                      kind.record.table + " holds nothing but is computed; it holds no inventory");
    }
}

inventory_table inventory::read(const inventory_kind& kind) const {
    refuse_computed_columns(kind);
    inventory_table table = table_of(kind, select_rows(kind));
    forget_absent_values(table);
    return table;
}

std::vector<inventory_table> inventory::read_all() const {
    std::vector<inventory_table> tables;
    for (const inventory_kind* kind : kinds::all) {
        tables.push_back(read(*kind));
    }
    return tables;
}

inventory_table inventory::read_after(const inventory_kind& kind, std::int64_t id) const {
    auto later = later_rows_.find(&kind);
    if (later == later_rows_.end()) {
        later = later_rows_.emplace(&kind, select_rows(kind, " WHERE rowid > ?")).first;
    }
    sqlite3_bind_int64(later->second.rows.get(), 1, id);
    return table_of(kind, later->second);
}

inventory::selection inventory::select_rows(const inventory_kind& kind, const std::string& condition) const {
    selection selected = {select("*", kind, condition), {}, {}};
    const int columns = sqlite3_column_count(selected.rows.get());
    for (int column = 0; column < columns; ++column) {
        selected.columns.push_back(name_of(selected.rows.get(), column));
        selected.are_unsigned.push_back(is_unsigned(kind, selected.columns.back()));
    }
    return selected;
}

inventory_table inventory::table_of(const inventory_kind& kind, const selection& selected) const {
    const statement_to_end reading(selected.rows.get());
    inventory_table table{&kind, selected.columns, {}};
    std::size_t bytes = 0;
    while (step(selected.rows)) {
        std::vector<inventory_value>& row = table.rows.emplace_back();
        for (std::size_t column = 0; column < selected.columns.size(); ++column) {
            row.push_back(value_at(selected.rows.get(), static_cast<int>(column), selected.are_unsigned[column]));
            bytes += bytes_of(row.back());
        }
        if (bytes > largest_table_) {
            throw failure("cannot read " + title_ + ": its table " + kind.record.table + " holds more than " +
                          std::to_string(largest_table_ >> 20) + " MiB; it holds no inventory");
        }
    }
    return table;
}

std::int64_t inventory::count(const inventory_kind& kind) const {
    const statement_ptr rows = select("count(*)", kind);
    step(rows);
    return sqlite3_column_int64(rows.get(), 0);
}

// A database of an earlier version, or of another maker, has no such table.
std::optional<source_record> inventory::source() const {
    sqlite3_stmt* prepared = nullptr;
    const int rc = sqlite3_prepare_v2(connection_.get(), "SELECT Name, Bytes, Sha256, LoadedAt FROM Source", -1,
                                      &prepared, nullptr);
    const statement_ptr row(prepared);
    if (rc != SQLITE_OK && rc != SQLITE_ERROR) {
        fail();
    }
    if (rc == SQLITE_ERROR || !step(row)) {
        return std::nullopt;
    }
    return source_record{repaired_utf8(text_at(row.get(), 0)),
                         static_cast<std::uint64_t>(sqlite3_column_int64(row.get(), 1)),
                         repaired_utf8(text_at(row.get(), 2)), sqlite3_column_int64(row.get(), 3)};
}

inventory::statement_ptr inventory::select(const std::string& what, const inventory_kind& kind,
                                           const std::string& condition) const {
    return prepare("SELECT " + what + " FROM " + kind.record.table + condition + " ORDER BY rowid");
}

inventory::statement_ptr inventory::prepare(const std::string& sql) const {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(connection_.get(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
        fail();
    }
    return statement_ptr(statement);
}

bool inventory::step(const statement_ptr& statement) const {
    const int rc = sqlite3_step(statement.get());
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) {
        fail();
    }
    return rc == SQLITE_ROW;
}

void inventory::fail() const {
    const std::string problem = "cannot read " + title_ + ": " + sqlite3_errmsg(connection_.get());
    const bool is_other = sqlite3_errcode(connection_.get()) == SQLITE_ERROR;  // it lacks a table or a column
    if (naming_ == database_naming::argument) {
        throw failure(is_other ? problem + "; it holds no inventory" : problem);
    }
    throw failure(is_other ? problem + "; it holds no inventory, name another with --database"
                           : with_advice(sqlite3_errcode(connection_.get()), problem));
}
