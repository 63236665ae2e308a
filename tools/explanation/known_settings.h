// SPDX-License-Identifier: Apache-2.0

/// The setting groups that the loader records, and the settings in them that it knows.
#ifndef TOOLS_EXPLANATION_KNOWN_SETTINGS_H
#define TOOLS_EXPLANATION_KNOWN_SETTINGS_H

#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "rows/kinds.h"

/// A setting and the column that takes it.
struct known_setting {
    const char* name;
    const char* column;
};

struct known_group {
    const char* name;
    const inventory_kind* kind;
    std::vector<known_setting> settings;  ///< in the order of their columns
};

/// One for each kind of row, from the tables that the loader itself works by.
const std::vector<known_group>& known_groups();

/// Null when it is not one of those that the loader records.
const known_group* find_known_group(const std::string& name);

/// Null when the loader does not know it.
const known_setting* find_known_setting(const known_group& group, const std::string& name);

/// The known name of which `name`, a setting of `real`, may be a misspelling: the nearest one, of equals one
/// that `real` lacks; such a one need not be as near. Null when there is none.
const char* similar_setting(const known_group& group, const cds_parser::setting_group& real, const std::string& name);

/// Likewise the group that may be meant by `name`, which is none of the known ones.
const char* similar_group(const std::string& name);

#endif
