// SPDX-License-Identifier: Apache-2.0

/// Short ways to build element trees in tests.
#ifndef TESTS_SUPPORT_TREE_BUILDER_H
#define TESTS_SUPPORT_TREE_BUILDER_H

#include <string>
#include <utility>
#include <vector>

#include <zebdb_cds_parser.h>

/// A setting that is not yet in a group: name, value text and value type.
struct setting {
    std::string name;
    std::string value;
    cds_parser::setting_node::setting_value_type type;
};

inline setting text(const std::string& name, const std::string& value) {
    return {name, value, cds_parser::setting_node::text_value};
}

inline setting integer(const std::string& name, const std::string& value) {
    return {name, value, cds_parser::setting_node::integer_value};
}

inline setting hex(const std::string& name, const std::string& value) {
    return {name, value, cds_parser::setting_node::hex_value};
}

inline setting boolean(const std::string& name, const std::string& value) {
    return {name, value, cds_parser::setting_node::bool_value};
}

/// A new setting; the caller owns it until it is added.
inline cds_parser::setting_node* make_setting(const setting& given, std::uint32_t level = 2) {
    auto* made = new cds_parser::setting_node(level);
    made->name = given.name;
    made->value = given.value;
    made->value_type = given.type;
    return made;
}

/// A new group with these settings; the caller owns it until it is added.
inline cds_parser::setting_group* make_group(const std::string& name, const std::vector<setting>& settings = {},
                                             std::uint32_t level = 1) {
    auto* made = new cds_parser::setting_group(level);
    made->name = name;
    for (const setting& given : settings) {
        made->add_setting(make_setting(given, level + 1));
    }
    return made;
}

/// A new component with one group; the caller owns it until it is added.
inline cds_parser::component* make_component(const std::string& group, const std::vector<setting>& settings = {},
                                             std::uint32_t level = 0) {
    auto* made = new cds_parser::component(level);
    made->add_setting_group(make_group(group, settings, level + 1));
    return made;
}

/// Puts `children` under `parent` in one new child slot group, which is returned; `parent` owns all of them.
inline cds_parser::child_slot_group* add_children(cds_parser::component& parent,
                                                  const std::vector<cds_parser::component*>& children) {
    auto* slots = new cds_parser::child_slot_group(parent.level + 1);
    for (cds_parser::component* child : children) {
        slots->add_component(child);
    }
    parent.add_child_slot_group(slots);
    return slots;
}

#endif
