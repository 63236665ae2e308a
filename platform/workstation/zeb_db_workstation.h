/// Opening and closing an inventory database on a workstation, where it is a SQLite file.
#ifndef ZEB_DB_WORKSTATION_H
#define ZEB_DB_WORKSTATION_H

#include <zeb_db.h>

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

/// Opens the SQLite database at `path`, which is made when it is missing, and makes the inventory's tables when they
/// are missing. 0, with a handle stored through `handle`; otherwise an error code, the reason logged and null stored.
/// The caller releases the handle with zeb_db_close().
int zeb_db_open(const char* path, _zeb_db_handle_t** handle);

/// Closes the database; a transaction still open is rolled back. Results must have been released before. Null is
/// allowed.
void zeb_db_close(_zeb_db_handle_t* handle);

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

#endif
