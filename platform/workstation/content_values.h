// SPDX-License-Identifier: Apache-2.0

/// The buffer in which a row is put together, for the platform's own files.
#ifndef WORKSTATION_CONTENT_VALUES_H
#define WORKSTATION_CONTENT_VALUES_H

#include <sqlite3.h>
#include <zeb_db.h>

#include <cstddef>
#include <string>
#include <vector>

enum class value_type { text, integer };

struct column_value {
    value_type type = value_type::integer;
    sqlite3_int64 integer = 0;
    std::string text;
};

/// Cleared values keep their memory: one buffer is refilled for every row of a load.
struct zeb_db_content_values_t {
    std::string columns;  ///< the names in put order, each with its NUL: what an insert statement is known by
    std::vector<column_value> values;
    std::size_t count = 0;
    int failure = SQLITE_OK;  ///< of a value that could not be put; no row is inserted without it
};

#endif
