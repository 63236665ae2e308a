// SPDX-License-Identifier: Apache-2.0

/// Makes memory run out for the library, in test programs that are built with failing_calloc.cpp.
#ifndef TESTS_SUPPORT_FAILING_CALLOC_H
#define TESTS_SUPPORT_FAILING_CALLOC_H

#include <cstddef>

/// While it lives, calloc() has no memory for `size` bytes; it has for any other size.
class failing_calloc {
public:
    explicit failing_calloc(std::size_t size);
    ~failing_calloc();
    failing_calloc(const failing_calloc&) = delete;
    failing_calloc& operator=(const failing_calloc&) = delete;

    /// Whether it was asked for that much.
    bool fired() const;
};

#endif
