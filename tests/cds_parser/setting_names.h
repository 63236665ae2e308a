// SPDX-License-Identifier: Apache-2.0

/// The settings of a group, for tests.
#ifndef TESTS_CDS_PARSER_SETTING_NAMES_H
#define TESTS_CDS_PARSER_SETTING_NAMES_H

#include <zebdb_cds_parser.h>

#include <string>
#include <vector>

inline std::vector<std::string> setting_names(const cds_parser::setting_group& group) {
    std::vector<std::string> names;
    for (const auto& entry : group.settings) {
        names.push_back(entry.first);
    }
    return names;
}

#endif
