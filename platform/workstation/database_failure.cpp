// SPDX-License-Identifier: Apache-2.0

#include "database_failure.h"

#include <string>

#include <vonk_log.h>

#include "zeb_db_workstation.h"

namespace {

struct first_failure {
    std::string text;
    zeb_db_failure_t failure = {SQLITE_OK, nullptr};
};

thread_local first_failure first;

}  // namespace

int note_failure(int code, const std::string& text) {
    if (zeb_db_first_failure() == nullptr) {
        first.text = text;
        first.failure = {code, first.text.c_str()};
    }
    return code;
}

int note_lack_of_memory() {
    return note_failure(SQLITE_NOMEM, "out of memory");  // short enough to stand in the string itself
}

int report_failure(int code, const std::string& text) {
    vonk_log::logErr("inventory database: %s", text.c_str());
    return note_failure(code, text);
}

int report_failure(sqlite3* connection, int code, const std::string& action) {
    return report_failure(code, action + ": " + sqlite3_errmsg(connection));
}

const zeb_db_failure_t* zeb_db_first_failure(void) {
    return first.failure.code == SQLITE_OK ? nullptr : &first.failure;
}

void zeb_db_forget_failure(void) {
    first.failure.code = SQLITE_OK;
}
