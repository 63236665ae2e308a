// SPDX-License-Identifier: Apache-2.0

/// The settings of a component that no column takes.
#ifndef TOOLS_EXPLANATION_UNUSED_SETTINGS_H
#define TOOLS_EXPLANATION_UNUSED_SETTINGS_H

#include <optional>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "explanation/known_settings.h"
#include "rows/table.h"

/// Why no column takes a setting.
enum class idleness {
    unknown,         ///< the loader does not know it
    other_record,    ///< its group is that of another kind of record than this one
    second_group,    ///< of several groups of a name only the first is read
    not_persistent,  ///< the columns for it are those of persistent memory modules
    no_number,       ///< it counts as absent, being negative or no number
};

struct unused_setting {
    std::string group;
    std::string name;
    idleness why;
    const char* similar;  ///< the known name that may be meant; null if there is none
};

/// Those of the groups that the loader records, in their order. `recorded_by` is the one of them that gives the row,
/// null when there is none; without a row what would get into one counts as used.
std::vector<unused_setting> unused_settings(const cds_parser::component& explained, const known_group* recorded_by,
                                            const std::optional<inventory_table>& row);

#endif
