// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "explanation/explanation.h"
#include "explanation/left_out_phrases.h"
#include "report/page_template.h"
#include "report/part_json.h"
#include "report/reported_inventory.h"
#include "report/reported_tree.h"
#include "report/sections.h"

using nlohmann::json;

namespace {

// Components for one reason.
struct reason_group {
    std::string code;
    std::vector<std::size_t> members;  // by their place among the explanations
};

std::vector<reason_group> groups_of(const std::vector<explanation>& explanations) {
    std::vector<reason_group> groups;
    for (std::size_t place = 0; place < explanations.size(); ++place) {
        if (explanations[place].judged.reasons.empty() && !is_left_out(explanations[place])) {
            continue;
        }
        const std::string code = code_of(explanations[place]);
        auto group =
            std::find_if(groups.begin(), groups.end(), [&code](const reason_group& each) { return each.code == code; });
        if (group == groups.end()) {
            group = groups.insert(groups.end(), {code, {}});
        }
        group->members.push_back(place);
    }
    return groups;
}

std::string title_of(const reason_group& group, const explanation& example) {
    const std::size_t count = group.members.size();
    if (example.rule) {
        return std::to_string(count) + ' ' + omission_text(*example.rule, count);
    }
    return example.groups.empty() ? counted(count, "component has", "components have") + " a group that is not recorded"
                                  : counted(count, "component", "components") + " left no row";
}

// What is the first reason of all of them is said once.
std::string common_reason(const reason_group& group, const std::vector<explanation>& explanations) {
    const auto first_reason = [&explanations](std::size_t place) {
        const std::vector<std::string>& reasons = explanations[place].judged.reasons;
        return reasons.empty() ? "" : reasons.front();
    };
    const std::string common = first_reason(group.members.front());
    const bool is_common = std::all_of(group.members.begin(), group.members.end(),
                                       [&](std::size_t place) { return first_reason(place) == common; });
    return is_common ? common : "";
}

json group_json(const reported_inventory& reported, const reason_group& group) {
    const std::vector<explanation>& explanations = reported.explanations;
    const std::string common = common_reason(group, explanations);
    json members = json::array();
    for (const std::size_t place : group.members) {
        json& member = members.emplace_back(left_out_json(reported, place));
        if (!common.empty()) {
            member["reasons"].erase(member["reasons"].begin());
        }
        member["in_tree"] = is_in_tree(explanations[place]);
    }
    return {{"code", group.code},
            {"title", title_of(group, explanations[group.members.front()])},
            {"reason", common},
            {"members", std::move(members)}};
}

}  // namespace

std::string left_out_section(const reported_inventory& reported) {
    if (!reported.is_explained) {
        return filled("left_out.html", {{"unknown", true}});
    }
    json groups = json::array();
    for (const reason_group& group : groups_of(reported.explanations)) {
        groups.push_back(group_json(reported, group));
    }
    return filled("left_out.html", {{"groups", groups}});
}
