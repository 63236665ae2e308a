// SPDX-License-Identifier: Apache-2.0

// Preloaded into a program, opens no stream of the file that FAILING_FILE names; FAILING_ERROR is the number of the
// error.

#include <dlfcn.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

using opening = std::FILE*(const char* path, const char* mode);

bool is_failing(const char* path) {
    const char* failing = std::getenv("FAILING_FILE");
    return failing != nullptr && std::strcmp(path, failing) == 0;
}

std::FILE* open_unless_failing(const char* function, const char* path, const char* mode) {
    if (is_failing(path)) {
        errno = std::atoi(std::getenv("FAILING_ERROR"));
        return nullptr;
    }
    return reinterpret_cast<opening*>(dlsym(RTLD_NEXT, function))(path, mode);
}

}  // namespace

// Each takes the place of the C library's function of that name.
extern "C" std::FILE* fopen(const char* path, const char* mode) {
    return open_unless_failing("fopen", path, mode);
}

extern "C" std::FILE* fopen64(const char* path, const char* mode) {
    return open_unless_failing("fopen64", path, mode);
}
