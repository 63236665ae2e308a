// SPDX-License-Identifier: Apache-2.0

/// A record's table as a test sees it: what a setting says and what its column must get.
#ifndef TESTS_SUPPORT_EXPECTED_COLUMN_H
#define TESTS_SUPPORT_EXPECTED_COLUMN_H

#include <string>
#include <utility>
#include <vector>

#include "support/tree_builder.h"

struct expected_column {
    setting given;
    std::string column;
    std::string value;  ///< as recorded_row writes it: "uint:7"
};

using column_values = std::vector<std::pair<std::string, std::string>>;

inline std::vector<setting> settings_of(const std::vector<expected_column>& table) {
    std::vector<setting> settings;
    for (const expected_column& expected : table) {
        settings.push_back(expected.given);
    }
    return settings;
}

/// The columns that a row begins with, and behind them those of `table`.
inline column_values columns_of(column_values columns, const std::vector<expected_column>& table) {
    for (const expected_column& expected : table) {
        columns.emplace_back(expected.column, expected.value);
    }
    return columns;
}

#endif
