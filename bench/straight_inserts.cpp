// SPDX-License-Identifier: Apache-2.0

#include "straight_inserts.h"

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "cds_parser/record_columns.h"

namespace {

struct statement_deleter {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using statement_ptr = std::unique_ptr<sqlite3_stmt, statement_deleter>;

[[noreturn]] void throw_problem(sqlite3* database) {
    throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(database));
}

statement_ptr prepare(sqlite3* database, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
        throw_problem(database);
    }
    return statement_ptr(statement);
}

void execute(sqlite3* database, const std::string& sql) {
    if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw_problem(database);
    }
}

stored_value column_value(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
        case SQLITE_INTEGER:
            return std::int64_t{sqlite3_column_int64(statement, column)};
        case SQLITE_TEXT:
            return std::string(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)));
        default:
            return std::monostate();
    }
}

// The row id stands first in every table and is not captured: SQLite gives a new one.
stored_table capture_table(sqlite3* database, const std::string& name) {
    const statement_ptr select = prepare(database, "SELECT * FROM " + name + " ORDER BY Id");
    const int column_count = sqlite3_column_count(select.get());
    stored_table table{name, {}, {}};
    for (int column = 1; column < column_count; ++column) {
        table.columns.emplace_back(sqlite3_column_name(select.get(), column));
    }
    while (sqlite3_step(select.get()) == SQLITE_ROW) {
        std::vector<stored_value>& row = table.rows.emplace_back();
        for (int column = 1; column < column_count; ++column) {
            row.push_back(column_value(select.get(), column));
        }
    }
    return table;
}

std::string insert_sql(const stored_table& table) {
    std::string columns;
    std::string places;
    for (const std::string& column : table.columns) {
        columns += (columns.empty() ? "" : ", ") + column;
        places += places.empty() ? "?" : ", ?";
    }
    return "INSERT INTO " + table.name + " (" + columns + ") VALUES (" + places + ")";
}

void bind(sqlite3_stmt* statement, int place, const stored_value& value) {
    if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        sqlite3_bind_int64(statement, place, *integer);
    } else if (const auto* text = std::get_if<std::string>(&value)) {
        sqlite3_bind_text(statement, place, text->data(), static_cast<int>(text->size()), SQLITE_STATIC);
    } else {
        sqlite3_bind_null(statement, place);
    }
}

void insert_table(sqlite3* database, const stored_table& table) {
    const statement_ptr insert = prepare(database, insert_sql(table));
    for (const std::vector<stored_value>& row : table.rows) {
        int place = 0;
        for (const stored_value& value : row) {
            bind(insert.get(), ++place, value);
        }
        if (sqlite3_step(insert.get()) != SQLITE_DONE) {
            throw_problem(database);
        }
        sqlite3_reset(insert.get());
    }
}

}  // namespace

std::vector<stored_table> capture_rows(sqlite3* database) {
    std::vector<stored_table> tables;
    for (const cds_parser::record_kind* kind : cds_parser::record_kinds) {
        tables.push_back(capture_table(database, kind->table));
    }
    return tables;
}

void insert_rows(sqlite3* database, const std::vector<stored_table>& tables) {
    execute(database, "BEGIN IMMEDIATE");
    for (const stored_table& table : tables) {
        insert_table(database, table);
    }
    execute(database, "COMMIT");
}

void delete_rows(sqlite3* database) {
    execute(database, "BEGIN IMMEDIATE");
    for (const cds_parser::record_kind* kind : cds_parser::record_kinds) {
        execute(database, std::string("DELETE FROM ") + kind->table);
    }
    execute(database, "COMMIT");
}
