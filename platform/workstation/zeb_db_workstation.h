/// Opening and closing an inventory database on a workstation, where it is a SQLite file.
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

/// Closes the database; a transaction still open is rolled back. Results must have been released before. Null is
/// allowed.
void zeb_db_close(_zeb_db_handle_t* handle);

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

#endif
