// SPDX-License-Identifier: Apache-2.0

#include "database_failure.h"

#include <cstddef>
#include <cstring>
#include <new>
#include <string>

#include <vonk_log.h>

#include "zeb_db_workstation.h"

namespace {

constexpr std::size_t longest_text = 1023;

// Of this thread. It has nothing to be destroyed: where memory is out, the C library ends a process in which a thread
// begins to have something.
struct first_failure {
    char text[longest_text + 1];
    zeb_db_failure_t failure;
};

thread_local first_failure first = {};

}  // namespace

int note_failure(int code, const char* text) {
    if (zeb_db_first_failure() == nullptr) {
        first.text[0] = '\0';
        std::strncat(first.text, text, longest_text);
        first.failure = {code, first.text};
    }
    return code;
}

int report_lack_of_memory() {
    note_failure(SQLITE_NOMEM, "out of memory");
    try {
        vonk_log::logErr("inventory database: out of memory");
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;  // whoever takes the lines has no memory either
    }
    return SQLITE_NOMEM;
}

int report_failure(int code, const std::string& text) {
    vonk_log::logErr("inventory database: %s", text.c_str());
    return note_failure(code, text.c_str());
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
