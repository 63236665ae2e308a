// SPDX-License-Identifier: Apache-2.0

/// Databases that an earlier version made.
#ifndef WORKSTATION_MIGRATION_H
#define WORKSTATION_MIGRATION_H

#include <sqlite3.h>

#include <optional>
#include <string>

#include "schema.h"

/// Why a database cannot be used.
struct refusal {
    int code;            ///< SQLite's primary result code, or zeb_db_is_newer
    std::string reason;  ///< for people
};

/// The refusal for a call on `connection` that has just given `code`.
refusal refused_by_sqlite(sqlite3* connection, int code);

/// Takes the steps that the database has not taken yet, each in a transaction of its own. Nothing when it then has
/// taken all of them; otherwise the step that failed is undone, those before it are not. `PRAGMA user_version` counts
/// them.
std::optional<refusal> migrate(sqlite3* connection, const database_schema& schema);

#endif
