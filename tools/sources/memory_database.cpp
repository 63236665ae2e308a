// SPDX-License-Identifier: Apache-2.0

#include "sources/memory_database.h"

#include <string>

#include <sqlite3.h>
#include <zeb_db.h>
#include <zeb_db_workstation.h>

#include "console/failure.h"

namespace {

// A database in memory that two connections share is named by a URI, which SQLite has to be told to understand before
// it does anything else.
const int uris_are_understood = sqlite3_config(SQLITE_CONFIG_URI, 1);

std::string new_name() {
    static int count = 0;
    if (uris_are_understood != SQLITE_OK) {
        throw failure(std::string("cannot make a database in memory: ") + sqlite3_errstr(uris_are_understood));
    }
    return "file:/zebdb-cds-" + std::to_string(++count) + "?vfs=memdb";
}

}  // namespace

memory_database::memory_database() : sqlite_name_(new_name()) {
    _zeb_db_handle_t* opened = nullptr;
    if (zeb_db_open(sqlite_name_.c_str(), &opened) != 0) {
        throw failure("cannot make a database in memory");
    }
    handle_.reset(opened);
}
