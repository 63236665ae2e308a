// SPDX-License-Identifier: Apache-2.0

#include "setting_group_map.h"

#include <vector>

#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {

void add_group(setting_group_map& groups, setting_group* group) {
    if (group != nullptr) {
        groups.emplace(group->name, group);
    }
}

setting_group* find_group(const setting_group_map& groups, const char* name) {
    const auto [first, last] = groups.equal_range(name);
    return first == last ? nullptr : first->second;
}

void append_groups(const setting_group_map& groups, const char* name, std::vector<setting_group*>& out) {
    const auto [first, last] = groups.equal_range(name);
    for (auto entry = first; entry != last; ++entry) {
        out.push_back(entry->second);
    }
}

bool remove_groups(setting_group_map& groups, const char* name) {
    const auto [first, last] = groups.equal_range(name);
    if (first == last) {
        return false;
    }
    for (auto entry = first; entry != last; ++entry) {
        delete entry->second;
    }
    groups.erase(first, last);
    return true;
}

void destroy_groups(setting_group_map& groups) {
    for (const auto& entry : groups) {
        delete entry.second;
    }
    groups.clear();
}

}  // namespace cds_parser
