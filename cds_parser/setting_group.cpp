// SPDX-License-Identifier: Apache-2.0

#include "zebdb_cds_parser/setting_group.h"

#include <cstdint>
#include <tuple>
#include <utility>

#include "zebdb_cds_parser/element.h"
#include "zebdb_cds_parser/setting_node.h"

namespace cds_parser {

const char* setting_group::TAG = "setting_group";

setting_group::setting_group(std::uint32_t nesting_level) : element(nesting_level) {}

setting_group::~setting_group() {
    clear();
}

element_type setting_group::get_type() const {
    return setting_group_type;
}

void setting_group::add_setting(setting_node* setting) {
    if (setting == nullptr) {
        return;
    }
    // In this form the entry is made first and its place looked for once, not twice.
    const auto [entry, inserted] =
        settings.emplace(std::piecewise_construct, std::tie(setting->name), std::tie(setting));
    if (!inserted) {
        delete entry->second;
        entry->second = setting;
    }
}

bool setting_group::remove_setting(const char* setting_name) {
    const auto entry = settings.find(setting_name);
    if (entry == settings.end()) {
        return false;
    }
    delete entry->second;
    settings.erase(entry);
    return true;
}

setting_node* setting_group::get_setting(const char* setting_name) const {
    const auto entry = settings.find(setting_name);
    return entry == settings.end() ? nullptr : entry->second;
}

bool setting_group::has_setting(const char* setting_name) const {
    return get_setting(setting_name) != nullptr;
}

void setting_group::clear() {
    for (const auto& entry : settings) {
        delete entry.second;
    }
    settings.clear();
}

}  // namespace cds_parser
