// SPDX-License-Identifier: Apache-2.0

// Preloaded into a program, refuses to insert rows into the table that FAILING_TABLE names, or ends the process there
// as FAILURE says.

#include <dlfcn.h>
#include <zeb_db.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace {

constexpr int refusal = 8;

bool is_failing(const char* table) {
    const char* failing = std::getenv("FAILING_TABLE");
    return failing != nullptr && std::strcmp(table, failing) == 0;
}

[[noreturn]] void lack_memory() {
    throw std::bad_alloc();
}

[[noreturn]] void throw_another() {
    throw std::runtime_error("nothing catches this");
}

void let_nothing_catch(void (*thrower)()) noexcept {
    thrower();
}

void end_as_told() {
    const char* told = std::getenv("FAILURE");
    const std::string failure = told == nullptr ? "" : told;
    if (failure == "exit") {
        std::exit(1);
    } else if (failure == "terminate") {
        std::terminate();
    } else if (failure == "no memory") {
        let_nothing_catch(lack_memory);
    } else if (failure == "exception") {
        let_nothing_catch(throw_another);
    }
}

}  // namespace

// Calls come here, since the symbols of what is preloaded go before those of the workstation platform.
int zeb_db_insert(_zeb_db_handle_t* handle, const char* table, zeb_db_content_values_t* values, unsigned flags,
                  std::int64_t* row_id) {
    if (is_failing(table)) {
        end_as_told();
        return refusal;
    }
    static const auto real = reinterpret_cast<decltype(&zeb_db_insert)>(dlsym(RTLD_NEXT, "zeb_db_insert"));
    return real(handle, table, values, flags, row_id);
}
