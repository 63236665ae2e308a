// SPDX-License-Identifier: Apache-2.0

/// A column: what it means, its unit, what its numbers stand for, where it comes from and when it is absent.
#ifndef TOOLS_ROWS_FIELD_H
#define TOOLS_ROWS_FIELD_H

#include <cstdint>
#include <optional>
#include <string>

#include "rows/column_units.h"
#include "rows/enumerations.h"

struct field {
    const char* column;
    const char* meaning;
    const char* unit;                          ///< empty for none
    column_unit text;                          ///< how people see it
    const enumeration* values;                 ///< what its numbers stand for; null for themselves
    std::string origin;                        ///< the setting or the rule that gives it
    std::string absent;                        ///< when it is absent; empty for never
    std::optional<std::int64_t> absent_value;  ///< the number in the database that stands for that
};

#endif
