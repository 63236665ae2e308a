#include "explanation/known_settings.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "cds_parser/record_columns.h"
#include "explanation/similar_name.h"
#include "rows/kinds.h"

namespace {

// How many characters of a name allow for one that differs.
constexpr std::size_t strict = 5;
constexpr std::size_t lenient = 3;

template <class... Tables>
std::vector<known_setting> settings_of(const Tables&... tables) {
    std::vector<known_setting> settings;
    const auto add = [&settings](const auto& table) {
        for (const auto& column : table) {
            settings.push_back({column.setting, column.name});
        }
    };
    (add(tables), ...);
    return settings;
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
    using namespace cds_parser;
    static const std::vector<known_group> groups = {
        {processor_group, &kinds::processors, settings_of(processor_columns)},
        {memory_group, &kinds::memory, settings_of(memory_columns, persistent_memory_columns)},
        {bridge_group, &kinds::bridges, settings_of(bridge_address_columns, bridge_columns)},
        {device_group, &kinds::devices, settings_of(device_place_columns, device_kind_columns, device_columns)},
    };
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
