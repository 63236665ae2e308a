// SPDX-License-Identifier: Apache-2.0

#include "explanation/component_title.h"

#include <cstdio>
#include <string>

#include <zebdb_cds_parser.h>

#include "console/output.h"
#include "console/utf8.h"
#include "explanation/known_settings.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"

namespace {

const std::string* find_text(const cds_parser::component& titled, const char* group, const char* setting) {
    const cds_parser::setting_group* settings = titled.get_setting_group(group);
    const cds_parser::setting_node* found = settings == nullptr ? nullptr : settings->get_setting(setting);
    return found == nullptr ? nullptr : &found->value;
}

// A title is repeated for everything that the loader misses below the component.
std::string shortened(const std::string& name) {
    constexpr std::size_t most_characters = 64;
    const std::string beginning = first_characters(name, most_characters);
    return beginning.size() == name.size() ? name : beginning + "...";
}

std::string number_text(const cds_parser::setting_group& group, const char* setting, const char* format,
                        long long default_value) {
    const cds_parser::setting_node* found = group.get_setting(setting);
    const long long number = found == nullptr ? default_value : found->get_int64(default_value);
    if (number < 0) {
        return "?";
    }
    char text[24];
    std::snprintf(text, sizeof text, format, static_cast<unsigned long long>(number));
    return text;
}

std::string address_text(const cds_parser::component& titled, const known_group& group) {
    const cds_parser::setting_group& settings = *titled.get_setting_group(group.name);
    return number_text(settings, "Segment Number", "%04llx", 0) + ':' +
           number_text(settings, "Bus Number", "%02llx", -1) + ':' +
           number_text(settings, "Device Number", "%02llx", -1) + '.' +
           number_text(settings, "Function Number", "%llx", -1);
}

}  // namespace

std::string component_title(const cds_parser::component& titled, const known_group* recorded) {
    if (recorded == nullptr) {
        const std::string* type = find_text(titled, "component_struct_info", "comp_type");
        return type == nullptr ? "component" : "component " + in_quotes(shortened(*type));
    }
    const kind_description& kind = recorded->kind->description();
    if (kind.name_setting == nullptr) {
        return std::string(kind.part_name) + ' ' + address_text(titled, *recorded);
    }
    const std::string* name = find_text(titled, recorded->name, kind.name_setting);
    return name == nullptr ? kind.part_name : std::string(kind.part_name) + ' ' + in_quotes(shortened(*name));
}

std::string component_name(const cds_parser::component& titled, const known_group* recorded) {
    if (recorded == nullptr) {
        return "";
    }
    const char* setting = recorded->kind->description().name_setting;
    if (setting == nullptr) {
        return address_text(titled, *recorded);
    }
    const std::string* name = find_text(titled, recorded->name, setting);
    return name == nullptr ? "" : *name;
}
