// SPDX-License-Identifier: Apache-2.0

// A platform that does nothing with what it is given. A program that is built with it spends its time in the library
// and in the XML library alone: rows and log lines are dropped, shell commands are not run.

#include <vonk_log.h>
#include <zeb_db.h>
#include <zeb_db_workstation.h>

#include <cstdint>
#include <cstdlib>

namespace {

char no_object;  // handles and buffers point here, and nobody looks behind them

template <class Object>
Object* pointer_to_nothing() {
    return reinterpret_cast<Object*>(&no_object);
}

}  // namespace

int zeb_db_open(const char*, _zeb_db_handle_t** handle) {
    *handle = pointer_to_nothing<_zeb_db_handle_t>();
    return 0;
}

void zeb_db_close(_zeb_db_handle_t*) {}

int zeb_db_delete(_zeb_db_handle_t*, const char*, const char*, const char* const*, unsigned, unsigned) {
    return 0;
}

int zeb_db_insert(_zeb_db_handle_t*, const char*, zeb_db_content_values_t*, unsigned, std::int64_t* row_id) {
    *row_id = 1;
    return 0;
}

zeb_db_content_values_t* zeb_db_get_content_values(void) {
    return pointer_to_nothing<zeb_db_content_values_t>();
}

void zeb_db_content_clear(zeb_db_content_values_t*) {}

int zeb_db_content_put_text(zeb_db_content_values_t*, const char*, const char*) {
    return 0;
}

int zeb_db_content_put_uint(zeb_db_content_values_t*, const char*, std::uint32_t) {
    return 0;
}

int zeb_db_content_put_uint64(zeb_db_content_values_t*, const char*, std::uint64_t) {
    return 0;
}

void zeb_db_free_content_values(zeb_db_content_values_t*) {}

int zeb_db_begin_transaction(_zeb_db_handle_t*) {
    return 0;
}

int zeb_db_commit_transaction(_zeb_db_handle_t*) {
    return 0;
}

namespace vonk_log {

void logErr(const char*, ...) {}
void logWarn(const char*, ...) {}
void logInfo(const char*, ...) {}

}  // namespace vonk_log

extern "C" int system(const char*) {
    return 0;
}
