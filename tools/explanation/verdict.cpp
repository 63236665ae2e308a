// SPDX-License-Identifier: Apache-2.0

#include "explanation/verdict.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "console/output.h"
#include "explanation/component_loader.h"
#include "explanation/component_title.h"
#include "explanation/counterfactual.h"
#include "explanation/known_settings.h"
#include "explanation/left_out.h"

namespace {

using cds_parser::component;
using cds_parser::setting_group;
using cds_parser::setting_node;

// Where the loader logged what is wrong with a value, that need not be said again.
std::string blame(const setting_group& group, const std::string& setting, bool logged) {
    const setting_node* found = group.get_setting(setting.c_str());
    if (found == nullptr) {
        return "there is no setting " + in_quotes(setting) + " in " + group.name;
    }
    const std::string value =
        std::string(setting_node::map_value_type(found->value_type)) + ' ' + in_quotes(found->value);
    return "the setting " + in_quotes(setting) + " in " + group.name +
           (logged ? " is " : " is negative, too large or no number: ") + value;
}

std::vector<std::string> misspelt_groups(const component& judged) {
    std::vector<std::string> reasons;
    for (const auto& [name, group] : judged.setting_groups) {
        if (const char* similar = similar_group(name)) {
            reasons.push_back("the loader does not record " + in_quotes(name) + "; " + in_quotes(similar) +
                              " may be meant");
        }
    }
    return reasons;
}

std::string card_rule(const component& judged, const component& first, const known_group& recorded_by) {
    const setting_node* slot = judged.get_setting_group(recorded_by.name)->get_setting("Slot Number");
    return "the card at slot " + (slot == nullptr ? "-1" : std::to_string(slot->get_int64(-1))) +
           " is recorded once, by its first function " + component_name(first, &recorded_by) +
           "; at a slot of its own it would have made a row";
}

// The rule by which there is no row, and what would have made one.
std::string rule(const component& judged, const known_group& recorded_by, const left_out_element& left_out) {
    switch (left_out.why) {
        case omission::no_location:
            return "its location is unknown; any 'Location' but 2, or the class code 0x010802 of an NVMe drive, would "
                   "have made a row";
        case omission::no_address:
            return "its address is incomplete; a bus, a device and a function number, none of them negative, would "
                   "have made a row";
        case omission::recorded_once:
            return card_rule(judged, *left_out.first_of_card, recorded_by);
        case omission::nothing_known:
        case omission::not_reached:
            break;
    }
    return std::string("the loader knows none of the settings in ") + recorded_by.name +
           "; any that it knows, such as " + in_quotes(recorded_by.settings.front().name) + ", would have made a row";
}

void blame_missing_settings(verdict& given, const component& judged, const known_group& recorded_by, bool logged,
                            counterfactual& doubts) {
    given.missing = doubts.settings_to_blame(judged, recorded_by, logged);
    for (const std::string& setting : given.missing) {
        given.reasons.push_back(blame(*judged.get_setting_group(recorded_by.name), setting, logged));
    }
}

// The loader logs that it refuses a component, or passes it over in silence.
verdict verdict_on_left_out(const component& judged, const known_group& recorded_by, bool logged,
                            const left_out_element* left_out, counterfactual& doubts) {
    verdict given = {logged ? fate::refused : fate::incomplete, {}, {}};
    if (left_out != nullptr) {
        given.reasons.push_back(rule(judged, recorded_by, *left_out));
    }
    blame_missing_settings(given, judged, recorded_by, logged, doubts);
    if (!logged && given.missing.empty()) {
        given.became = fate::nothing_known;
    }
    return given;
}

struct fate_name {
    fate value;
    const char* name;
};

constexpr fate_name fate_names[] = {
    {fate::recorded, "recorded"},
    {fate::refused, "refused"},
    {fate::failed, "failed"},
    {fate::incomplete, "incomplete"},
    {fate::nothing_known, "nothing_known"},
    {fate::not_reached, "not_reached"},
    {fate::no_known_group, "no_known_group"},
};

}  // namespace

const char* name_of(fate became) {
    return std::find_if(std::begin(fate_names), std::end(fate_names),
                        [became](const fate_name& each) { return each.value == became; })
        ->name;
}

verdict verdict_on(const component& judged, const known_group* recorded_by, const loaded_component& loaded,
                   const left_out_element* left_out, counterfactual& doubts) {
    if (recorded_by == nullptr) {
        return {fate::no_known_group, misspelt_groups(judged), {}};
    }
    if (loaded.row) {
        return {fate::recorded, {}, {}};
    }
    if (!loaded.succeeded && !loaded.log.empty()) {
        return {fate::failed, {"its row could not be written"}, {}};
    }
    return verdict_on_left_out(judged, *recorded_by, !loaded.log.empty(), left_out, doubts);
}

verdict verdict_on_unreached(const component& judged, bool has_known_group, const std::string& obstacle) {
    if (has_known_group) {
        return {fate::not_reached, {obstacle}, {}};
    }
    verdict given = {fate::no_known_group, misspelt_groups(judged), {}};
    if (!given.reasons.empty()) {
        given.reasons.push_back(obstacle);
    }
    return given;
}

verdict verdict_on_slots(const std::vector<std::string>& known_groups) {
    verdict given = {fate::not_reached, {}, {}};
    for (const std::string& group : known_groups) {
        given.reasons.push_back("the loader looks for " + group +
                                " in components only; in one it would have made a row");
    }
    return given;
}
