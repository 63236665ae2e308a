// SPDX-License-Identifier: Apache-2.0

/// The columns that the loader takes from settings, from the tables that it works by.
#ifndef TOOLS_ROWS_RECORDED_COLUMNS_H
#define TOOLS_ROWS_RECORDED_COLUMNS_H

#include <vector>

#include "cds_parser/record_columns.h"

inline cds_parser::column as_column(const cds_parser::column& each) {
    return each;
}

template <class Record>
cds_parser::column as_column(const cds_parser::number_column<Record>& each) {
    return {each.setting, each.name, cds_parser::column_type::uint};
}

/// Those of several tables, one after the other.
template <class... Tables>
std::vector<cds_parser::column> columns_in(const Tables&... tables) {
    std::vector<cds_parser::column> columns;
    const auto add = [&columns](const auto& table) {
        for (const auto& each : table) {
            columns.push_back(as_column(each));
        }
    };
    (add(tables), ...);
    return columns;
}

#endif
