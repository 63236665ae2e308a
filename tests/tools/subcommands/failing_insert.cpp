// SPDX-License-Identifier: Apache-2.0

// Preloaded into a program, refuses to insert rows into the table that FAILING_TABLE names.

#include <dlfcn.h>
#include <zeb_db.h>

#include <cstdlib>
#include <cstring>

namespace {

constexpr int refusal = 8;

bool is_failing(const char* table) {
    const char* failing = std::getenv("FAILING_TABLE");
    return failing != nullptr && std::strcmp(table, failing) == 0;
}

}  // namespace

// Calls come here, since the symbols of what is preloaded go before those of the workstation platform.
int zeb_db_insert(_zeb_db_handle_t* handle, const char* table, zeb_db_content_values_t* values, unsigned flags,
                  std::int64_t* row_id) {
    if (is_failing(table)) {
        return refusal;
    }
    static const auto real = reinterpret_cast<decltype(&zeb_db_insert)>(dlsym(RTLD_NEXT, "zeb_db_insert"));
    return real(handle, table, values, flags, row_id);
}
