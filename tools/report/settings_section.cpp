// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include <nlohmann/json.hpp>

#include "explanation/explanation.h"
#include "explanation/explanation_phrases.h"
#include "explanation/odd_values.h"
#include "explanation/unused_settings.h"
#include "report/page_template.h"
#include "report/reported_inventory.h"
#include "report/sections.h"

using nlohmann::json;

namespace {

std::string note_on(const unused_setting& unused) {
    if (const char* rule = rule_against(unused)) {
        return rule;
    }
    return unused.similar == nullptr ? "" : "'" + std::string(unused.similar) + "' may be meant";
}

// The same of several components is one line.
json unused_json(const std::vector<explanation>& explanations) {
    std::map<std::tuple<std::string, std::string, std::string>, std::size_t> counts;
    for (const explanation& told : explanations) {
        for (const unused_setting& unused : told.unused) {
            ++counts[{unused.group, unused.name, note_on(unused)}];
        }
    }
    json all = json::array();
    for (const auto& [setting, count] : counts) {
        const auto& [group, name, note] = setting;
        all.push_back({{"group", group}, {"setting", name}, {"note", note}, {"count", count}});
    }
    return all;
}

json odd_json(const std::vector<explanation>& explanations) {
    json all = json::array();
    for (const explanation& told : explanations) {
        for (const odd_value& odd : told.odd) {
            all.push_back({{"title", told.title}, {"what", oddity_text(odd)}, {"value", stored_text(odd, told)}});
        }
    }
    return all;
}

}  // namespace

std::string settings_section(const reported_inventory& reported) {
    if (!reported.is_explained) {
        return filled("settings.html", {{"unknown", true}});
    }
    const json unused = unused_json(reported.explanations);
    const json odd = odd_json(reported.explanations);
    return filled("settings.html", {{"count", count(reported.explanations).unused_settings},
                                    {"unused", unused},
                                    {"any_unused", !unused.empty()},
                                    {"odd", odd},
                                    {"any_odd", !odd.empty()}});
}
