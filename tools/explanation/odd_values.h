// SPDX-License-Identifier: Apache-2.0

/// Values that are not what their columns take.
#ifndef TOOLS_EXPLANATION_ODD_VALUES_H
#define TOOLS_EXPLANATION_ODD_VALUES_H

#include <optional>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "explanation/known_settings.h"
#include "rows/table.h"

/// What is odd about a value.
enum class oddity {
    text_for_number,  ///< its type is no number's
    no_number,        ///< its type is a number's, but its text is none
    too_large,        ///< the column has not enough bits
    replaced,         ///< the loader puts another number in its place
};

struct odd_value {
    std::string group;
    std::string setting;
    std::string column;
    oddity what;
    std::string value;       ///< with its type, as in "integer_value 'N/A'"
    inventory_value stored;  ///< what the column holds; never put without a row
};

/// Those in the group of `recorded_by`, null for none, in the order of its columns.
std::vector<odd_value> odd_values(const cds_parser::component& explained, const known_group* recorded_by,
                                  const std::optional<inventory_table>& row);

#endif
