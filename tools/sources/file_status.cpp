// SPDX-License-Identifier: Apache-2.0

#include "sources/file_status.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "sources/input_file.h"

struct stat status_of(const std::string& name) {
    struct stat status = {};  // stays so where that fails
    is_standard_input(name) ? ::fstat(STDIN_FILENO, &status) : ::stat(name.c_str(), &status);
    return status;
}

bool is_file(const struct stat& status) {
    return S_ISREG(status.st_mode);
}

bool is_unchanged(const std::string& name, const struct stat& before) {
    const struct stat now = status_of(name);
    return now.st_dev == before.st_dev && now.st_ino == before.st_ino && now.st_size == before.st_size &&
           now.st_mtim.tv_sec == before.st_mtim.tv_sec && now.st_mtim.tv_nsec == before.st_mtim.tv_nsec;
}
