// SPDX-License-Identifier: Apache-2.0

/// Calls on a database that fail, for the platform's own files.
#ifndef WORKSTATION_DATABASE_FAILURE_H
#define WORKSTATION_DATABASE_FAILURE_H

#include <sqlite3.h>

#include <new>
#include <string>

/// Keeps the failure for zeb_db_first_failure(), unless there is an earlier one; takes no memory. `code`.
int note_failure(int code, const char* text);

/// Logs the failure and keeps it. `code`.
int report_failure(int code, const std::string& text);

/// The same for what a call on `connection` has just refused; `action` is what could not be done.
int report_failure(sqlite3* connection, int code, const std::string& action);

/// The same for a call that ran out of memory. SQLITE_NOMEM.
int report_lack_of_memory();

/// No exception crosses the C interface.
template <class Body>
int guarded(Body body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return report_lack_of_memory();
    }
}

#endif
