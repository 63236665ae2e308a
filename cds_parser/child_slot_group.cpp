// SPDX-License-Identifier: Apache-2.0

#include "zebdb_cds_parser/child_slot_group.h"

#include <cstdint>
#include <vector>

#include "setting_group_map.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/element.h"
#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {

const char* child_slot_group::TAG = "child_slot_group";

child_slot_group::child_slot_group(std::uint32_t nesting_level) : element(nesting_level) {}

child_slot_group::~child_slot_group() {
    clear();
}

element_type child_slot_group::get_type() const {
    return child_slot_group_type;
}

void child_slot_group::add_setting_group(setting_group* group) {
    add_group(setting_groups, group);
}

setting_group* child_slot_group::get_setting_group(const char* name) const {
    return find_group(setting_groups, name);
}

void child_slot_group::get_setting_group(const char* name, std::vector<setting_group*>& out) const {
    append_groups(setting_groups, name, out);
}

bool child_slot_group::has_setting_group(const char* name) const {
    return find_group(setting_groups, name) != nullptr;
}

bool child_slot_group::remove_setting_group(const char* name) {
    return remove_groups(setting_groups, name);
}

void child_slot_group::clear_setting_groups() {
    destroy_groups(setting_groups);
}

void child_slot_group::add_component(component* child) {
    if (child != nullptr) {
        components.push_back(child);
    }
}

void child_slot_group::get_components(std::vector<component*>& out) const {
    out.insert(out.end(), components.begin(), components.end());
}

void child_slot_group::clear_components() {
    for (component* child : components) {
        delete child;
    }
    components.clear();
}

void child_slot_group::clear() {
    clear_setting_groups();
    clear_components();
}

}  // namespace cds_parser
