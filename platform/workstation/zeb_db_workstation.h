// SPDX-License-Identifier: Apache-2.0

/// @file
/// Opening and closing an inventory database on a workstation, where it is a SQLite file. For C and C++.
#ifndef ZEB_DB_WORKSTATION_H
#define ZEB_DB_WORKSTATION_H

#include <zeb_db.h>

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

/// What zeb_db_open() returns for a database that a newer version of the platform made; every other error code is a
/// primary result code of SQLite.
enum { zeb_db_is_newer = 24 };

/// Opens the SQLite database at `path`, which is made when it is missing, and makes the inventory's tables when they
/// are missing. A database that an earlier version made gets what it lacks, all rows are kept; one that cannot be
/// written is opened as it is. 0, with a handle stored through `handle`; otherwise an error code, the reason logged,
/// null stored and the inventory as it was. The caller releases the handle with zeb_db_close().
int zeb_db_open(const char* path, _zeb_db_handle_t** handle);

/// The version of a database that this platform makes: its `PRAGMA user_version`, for who reads one with SQLite itself.
int zeb_db_schema_version(void);

/// Closes the database; a transaction still open is rolled back. Results must have been released before. Null is
/// allowed.
void zeb_db_close(_zeb_db_handle_t* handle);

/// Something that a database could not do.
typedef struct zeb_db_failure_t {
    int code;          ///< what the call returned
    const char* text;  ///< for people, at most 1023 bytes, maybe lines: "insert into PCIs: database or disk is full"
} zeb_db_failure_t;

/// The first failure in this thread since the last call of zeb_db_forget_failure(), or null; those that follow are its
/// consequences as a rule. Every function of zeb_db.h, inventory_service.h and this header counts, whoever called it; a
/// null argument or a column without a number is no failure of the database. The failure stays the platform's, valid
/// until the next call of zeb_db_forget_failure() in this thread, and after its handle is closed.
const zeb_db_failure_t* zeb_db_first_failure(void);

/// Lets the next failure in this thread be the first one.
void zeb_db_forget_failure(void);

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

#endif
