// SPDX-License-Identifier: Apache-2.0

#include "explanation/known_settings.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "cds_parser/record_columns.h"
#include "explanation/similar_name.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"

namespace {

// How many characters of a name allow for one that differs.
constexpr std::size_t strict = 5;
constexpr std::size_t lenient = 3;

std::vector<known_group> groups_of_all_kinds() {
    std::vector<known_group> groups;
    for (const inventory_kind* kind : kinds::all) {
        known_group& group = groups.emplace_back(known_group{kind->record.group, kind, {}});
        for (const cds_parser::column& column : kind->description().recorded) {
            group.settings.push_back({column.setting, column.name});
        }
    }
    return groups;
}

template <class Named>
std::vector<const char*> names_of(const std::vector<Named>& all) {
    std::vector<const char*> names;
    std::transform(all.begin(), all.end(), std::back_inserter(names), [](const Named& each) { return each.name; });
    return names;
}

template <class Named>
const Named* find_named(const std::vector<Named>& all, const std::string& name) {
    const auto found = std::find_if(all.begin(), all.end(), [&name](const Named& each) { return each.name == name; });
    return found == all.end() ? nullptr : &*found;
}

}  // namespace

const std::vector<known_group>& known_groups() {
    static const std::vector<known_group> groups = groups_of_all_kinds();
    return groups;
}

const known_group* find_known_group(const std::string& name) {
    return find_named(known_groups(), name);
}

const known_setting* find_known_setting(const known_group& group, const std::string& name) {
    return find_named(group.settings, name);
}

const char* similar_setting(const known_group& group, const cds_parser::setting_group& real, const std::string& name) {
    std::vector<const char*> names = names_of(group.settings);
    const auto present = std::stable_partition(names.begin(), names.end(),
                                               [&real](const char* known) { return !real.has_setting(known); });
    if (const char* similar = most_similar(name, names, strict)) {
        return similar;
    }
    names.erase(present, names.end());
    return most_similar(name, names, lenient);
}

const char* similar_group(const std::string& name) {
    return most_similar(name, names_of(known_groups()), strict);
}
