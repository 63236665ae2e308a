// SPDX-License-Identifier: Apache-2.0

/// The setting groups of a component or a child slot group: what the two classes do alike with theirs.
#ifndef CDS_PARSER_SETTING_GROUP_MAP_H
#define CDS_PARSER_SETTING_GROUP_MAP_H

#include <map>
#include <string>
#include <vector>

#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {

using setting_group_map = std::multimap<std::string, setting_group*>;

void add_group(setting_group_map& groups, setting_group* group);
setting_group* find_group(const setting_group_map& groups, const char* name);
void append_groups(const setting_group_map& groups, const char* name, std::vector<setting_group*>& out);
bool remove_groups(setting_group_map& groups, const char* name);
void destroy_groups(setting_group_map& groups);

}  // namespace cds_parser

#endif
