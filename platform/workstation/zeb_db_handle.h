// SPDX-License-Identifier: Apache-2.0

/// What stands behind a database handle on a workstation, for the platform's own files.
#ifndef WORKSTATION_ZEB_DB_HANDLE_H
#define WORKSTATION_ZEB_DB_HANDLE_H

#include <sqlite3.h>
#include <zeb_db.h>

#include <memory>
#include <string>
#include <unordered_map>

struct connection_deleter {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
};
using connection_ptr = std::unique_ptr<sqlite3, connection_deleter>;

struct statement_deleter {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using statement_ptr = std::unique_ptr<sqlite3_stmt, statement_deleter>;

struct _zeb_db_handle_t {
    connection_ptr connection;
    std::unordered_map<std::string, statement_ptr> inserts;  // by table and column set
    std::string insert_key;                                  // kept for its memory
    bool in_transaction = false;
    bool has_memory_tables = false;
};

/// Runs one or more SQL statements to do `action`. SQLite's result code; a failure is reported. Refused while the
/// caller counts on a transaction that SQLite gave up.
int execute(_zeb_db_handle_t& handle, const char* sql, const char* action);

#endif
