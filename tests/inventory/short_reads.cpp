// SPDX-License-Identifier: Apache-2.0

#include "short_reads.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>

namespace {

const short_reads* present = nullptr;

}  // namespace

short_reads::short_reads(const char* path) {
    EXPECT_EQ(stat(path, &file_), 0) << path;
    present = this;
}

short_reads::~short_reads() {
    present = nullptr;
}

bool short_reads::concern(int descriptor) const {
    struct stat other = {};
    return fstat(descriptor, &other) == 0 && other.st_dev == file_.st_dev && other.st_ino == file_.st_ino;
}

// The library's calls come here, since the program's own symbols go before the C library's.
extern "C" std::size_t fread(void* data, std::size_t size, std::size_t count, std::FILE* file) {
    using fread_function = std::size_t (*)(void*, std::size_t, std::size_t, std::FILE*);
    static const auto real = reinterpret_cast<fread_function>(dlsym(RTLD_NEXT, "fread"));
    const bool is_short = present != nullptr && count > 0 && present->concern(fileno(file));
    return real(data, size, is_short ? count - 1 : count, file);
}
