// SPDX-License-Identifier: Apache-2.0

#include "support/failing_calloc.h"

#include <dlfcn.h>

#include <cstdlib>

namespace {

std::size_t refused_size = 0;
bool refused = false;

}  // namespace

failing_calloc::failing_calloc(std::size_t size) {
    refused = false;
    refused_size = size;
}

failing_calloc::~failing_calloc() {
    refused_size = 0;
}

bool failing_calloc::fired() const {
    return refused;
}

// The sanitizer's own, where it stands in the program itself, as clang puts it there.
extern "C" void* __interceptor_calloc(std::size_t count, std::size_t size) __attribute__((weak));

// The library's calls come here, since the program's own symbols go before the C library's.
extern "C" void* calloc(std::size_t count, std::size_t size) {
    if (refused_size != 0 && count * size == refused_size) {
        refused = true;
        return nullptr;
    }
    using calloc_function = void* (*)(std::size_t, std::size_t);
    static const auto real = __interceptor_calloc != nullptr
                                 ? &__interceptor_calloc
                                 : reinterpret_cast<calloc_function>(dlsym(RTLD_NEXT, "calloc"));
    return real(count, size);
}
