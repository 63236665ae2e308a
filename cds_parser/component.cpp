// SPDX-License-Identifier: Apache-2.0

#include "zebdb_cds_parser/component.h"

#include <cstdint>
#include <vector>

#include "setting_group_map.h"
#include "zebdb_cds_parser/child_slot_group.h"
#include "zebdb_cds_parser/element.h"
#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {

const char* component::TAG = "component";

component::component(std::uint32_t nesting_level) : element(nesting_level) {}

component::~component() {
    clear();
}

element_type component::get_type() const {
    return component_type;
}

void component::add_setting_group(setting_group* group) {
    add_group(setting_groups, group);
}

setting_group* component::get_setting_group(const char* name) const {
    return find_group(setting_groups, name);
}

void component::get_setting_group(const char* name, std::vector<setting_group*>& out) const {
    append_groups(setting_groups, name, out);
}

bool component::has_setting_group(const char* name) const {
    return find_group(setting_groups, name) != nullptr;
}

bool component::remove_setting_group(const char* name) {
    return remove_groups(setting_groups, name);
}

void component::clear_setting_groups() {
    destroy_groups(setting_groups);
}

void component::add_child_slot_group(child_slot_group* group) {
    if (group != nullptr) {
        child_slot_groups.push_back(group);
    }
}

void component::get_child_slot_groups(std::vector<child_slot_group*>& out) const {
    out.insert(out.end(), child_slot_groups.begin(), child_slot_groups.end());
}

void component::clear_child_slot_groups() {
    for (child_slot_group* group : child_slot_groups) {
        delete group;
    }
    child_slot_groups.clear();
}

void component::clear() {
    clear_setting_groups();
    clear_child_slot_groups();
}

}  // namespace cds_parser
