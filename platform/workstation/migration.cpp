// SPDX-License-Identifier: Apache-2.0

#include "migration.h"

#include <cstring>
#include <optional>
#include <string>

#include "schema.h"
#include "zeb_db_handle.h"
#include "zeb_db_workstation.h"

namespace {

std::optional<refusal> run(sqlite3* connection, const std::string& sql) {
    const int rc = sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) {
        return refused_by_sqlite(connection, rc);
    }
    return std::nullopt;
}

std::optional<refusal> read_version(sqlite3* connection, int& version) {
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(connection, "PRAGMA user_version", -1, &prepared, nullptr);
    const statement_ptr row(prepared);
    if (sqlite3_step(row.get()) != SQLITE_ROW) {
        return refused_by_sqlite(connection, sqlite3_errcode(connection));
    }
    version = sqlite3_column_int(row.get(), 0);
    return std::nullopt;
}

bool lacks_steps(const database_schema& schema, int version) {
    return version >= 0 && version < schema.version;
}

// Another process may take the step while this one waits for the lock.
std::optional<refusal> take_step_in_transaction(sqlite3* connection, const database_schema& schema, int& version) {
    if (auto problem = read_version(connection, version)) {
        return problem;
    }
    if (lacks_steps(schema, version)) {
        const std::string step = schema.steps[version];
        if (auto problem = run(connection, step + ";PRAGMA user_version=" + std::to_string(version + 1))) {
            return problem;
        }
        ++version;
    }
    return run(connection, "COMMIT");
}

std::optional<refusal> take_step(sqlite3* connection, const database_schema& schema, int& version) {
    if (auto problem = run(connection, "BEGIN IMMEDIATE")) {
        return problem;
    }
    auto problem = take_step_in_transaction(connection, schema, version);
    if (problem) {
        run(connection, "ROLLBACK");
    }
    return problem;
}

refusal refused_version(const database_schema& schema, int version) {
    return {zeb_db_is_newer, "it was made by a newer version (its schema is version " + std::to_string(version) +
                                 ", this one knows " + std::to_string(schema.version) +
                                 " and earlier); use that version or another database"};
}

}  // namespace

refusal refused_by_sqlite(sqlite3* connection, int code) {
    std::string reason = sqlite3_errmsg(connection);
    if (const int system_error = sqlite3_system_errno(connection)) {
        reason += std::string(" (") + std::strerror(system_error) + ")";
    }
    return {code, reason};
}

std::optional<refusal> migrate(sqlite3* connection, const database_schema& schema) {
    int version = 0;
    auto problem = read_version(connection, version);
    while (!problem && lacks_steps(schema, version)) {
        problem = take_step(connection, schema, version);
    }
    if (problem || version == schema.version) {
        return problem;
    }
    return refused_version(schema, version);
}
