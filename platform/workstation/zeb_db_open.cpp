// SPDX-License-Identifier: Apache-2.0

// Opening an inventory database, whatever version of this platform made it.

#include <vonk_log.h>
#include <zeb_db.h>

#include <memory>
#include <optional>
#include <string>

#include "database_failure.h"
#include "migration.h"
#include "schema.h"
#include "zeb_db_handle.h"
#include "zeb_db_workstation.h"

namespace {

constexpr int busy_timeout_ms = 5000;

// A page is written whole, and most changes are of a row or two. It holds for a database that is made here.
constexpr const char* small_pages = "PRAGMA page_size=1024";

bool holds_inventory(sqlite3* connection) {
    return sqlite3_table_column_metadata(connection, "main", "Processor", nullptr, nullptr, nullptr, nullptr, nullptr,
                                         nullptr) == SQLITE_OK;
}

std::optional<refusal> open_connection(const char* path, _zeb_db_handle_t& handle) {
    sqlite3* connection = nullptr;
    const int rc =
        sqlite3_open_v2(path, &connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    handle.connection.reset(connection);
    if (rc != SQLITE_OK) {
        return refused_by_sqlite(connection, rc);
    }
    sqlite3_busy_timeout(connection, busy_timeout_ms);
    // Else SQLite takes a quoted name that is no column for a text.
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    // Whoever made the database: what stands in its schema runs no functions but harmless ones.
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_exec(connection, small_pages, nullptr, nullptr, nullptr);
    const auto problem = migrate(connection, inventory_schema);
    // An inventory that cannot be written can be read all the same; who tries to write is told so then.
    return problem && problem->code == SQLITE_READONLY && holds_inventory(connection) ? std::nullopt : problem;
}

}  // namespace

int zeb_db_open(const char* path, _zeb_db_handle_t** handle) {
    if (path == nullptr || handle == nullptr) {
        return SQLITE_MISUSE;
    }
    *handle = nullptr;
    return guarded([&] {
        auto opened = std::make_unique<_zeb_db_handle_t>();
        if (const auto problem = open_connection(path, *opened)) {
            const std::string text = std::string("cannot open inventory database '") + path + "': " + problem->reason;
            vonk_log::logErr("%s", text.c_str());
            return note_failure(problem->code, text.c_str());
        }
        *handle = opened.release();
        return SQLITE_OK;
    });
}

int zeb_db_schema_version(void) {
    return inventory_schema.version;
}

void zeb_db_close(_zeb_db_handle_t* handle) {
    delete handle;
}
