// SPDX-License-Identifier: Apache-2.0

/// Values of columns, for tests.
#ifndef TESTS_TOOLS_VALUES_H
#define TESTS_TOOLS_VALUES_H

#include <cstdint>

#include "rows/table.h"

inline inventory_value number(std::int64_t value) {
    return value;
}

inline const inventory_value absent;

#endif
