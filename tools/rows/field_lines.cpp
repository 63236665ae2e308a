// SPDX-License-Identifier: Apache-2.0

#include "rows/field_lines.h"

#include <algorithm>
#include <string>
#include <vector>

#include "cds_parser/record_columns.h"
#include "rows/field.h"

namespace {

const char* setting_of(const std::vector<cds_parser::column>& recorded, const std::string& column) {
    const auto found = std::find_if(recorded.begin(), recorded.end(),
                                    [&column](const cds_parser::column& each) { return each.name == column; });
    return found == recorded.end() ? nullptr : found->setting;
}

}  // namespace

std::vector<field> fields_in(const char* group, const std::vector<cds_parser::column>& recorded,
                             const std::vector<field_line>& lines) {
    std::vector<field> fields;
    for (const field_line& line : lines) {
        const std::string origin = line.origin != nullptr
                                       ? line.origin
                                       : std::string("'") + setting_of(recorded, line.column) + "' in " + group;
        fields.push_back({line.column, line.meaning, line.unit, line.text, line.values, origin,
                          line.absent == nullptr ? "the setting is absent" : line.absent, line.stands_for_absent});
    }
    return fields;
}
