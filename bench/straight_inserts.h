// SPDX-License-Identifier: Apache-2.0

/// The rows of a load without the load: what SQLite itself takes for them.
#ifndef BENCH_STRAIGHT_INSERTS_H
#define BENCH_STRAIGHT_INSERTS_H

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

struct sqlite3;

/// Null, an integer or a text, as SQLite stored it.
using stored_value = std::variant<std::monostate, std::int64_t, std::string>;

struct stored_table {
    std::string name;
    std::vector<std::string> columns;  // all but the row id
    std::vector<std::vector<stored_value>> rows;
};

/// The four inventory tables with all their rows. Throws std::runtime_error on a database error.
std::vector<stored_table> capture_rows(sqlite3* database);

/// Inserts the rows through one prepared statement a table, in one transaction. Throws std::runtime_error on a database
/// error.
void insert_rows(sqlite3* database, const std::vector<stored_table>& tables);

/// Deletes every row of the four inventory tables in one transaction. Throws std::runtime_error on a database error.
void delete_rows(sqlite3* database);

#endif
