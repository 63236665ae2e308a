// SPDX-License-Identifier: Apache-2.0

/// What the fuzz targets share.
#ifndef TESTS_FUZZ_FUZZ_TARGET_H
#define TESTS_FUZZ_FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

/// Tries one input; what must hold of every one is required of it. Always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

inline std::string text_of(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Ends the process, so that the fuzzer keeps the input, when `rule` does not hold.
inline void require(bool holds, const char* rule) {
    if (!holds) {
        std::fprintf(stderr, "this does not hold: %s\n", rule);
        std::abort();
    }
}

#endif
