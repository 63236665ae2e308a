// SPDX-License-Identifier: Apache-2.0

#include "explanation/verdict.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "console/output.h"
#include "explanation/component_loader.h"
#include "explanation/counterfactual.h"
#include "explanation/known_settings.h"
#include "sources/library_log.h"

namespace {

using cds_parser::component;
using cds_parser::setting_group;
using cds_parser::setting_node;

std::vector<std::string> texts_of(const std::vector<log_line>& lines) {
    std::vector<std::string> texts;
    std::transform(lines.begin(), lines.end(), std::back_inserter(texts),
                   [](const log_line& line) { return line.text; });
    return texts;
}

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

void blame_missing_settings(verdict& given, const component& judged, const known_group& recorded_by, bool logged,
                            counterfactual& doubts) {
    given.missing = doubts.settings_to_blame(judged, recorded_by, logged);
    for (const std::string& setting : given.missing) {
        given.reasons.push_back(blame(*judged.get_setting_group(recorded_by.name), setting, logged));
    }
}

// The last of the lines that the loader logs when it refuses a component says that it did.
verdict verdict_on_refused(const component& judged, const known_group& recorded_by, const loaded_component& loaded,
                           counterfactual& doubts) {
    verdict given = {fate::refused, {loaded.log.back().text}, {}};
    blame_missing_settings(given, judged, recorded_by, true, doubts);
    return given;
}

verdict verdict_on_silence(const component& judged, const known_group& recorded_by, counterfactual& doubts) {
    verdict given = {fate::incomplete, {}, {}};
    blame_missing_settings(given, judged, recorded_by, false, doubts);
    if (given.missing.empty()) {
        given.became = fate::nothing_known;
        given.reasons.push_back(std::string("the loader knows none of the settings in ") + recorded_by.name);
    }
    return given;
}

}  // namespace

verdict verdict_on(const component& judged, const known_group* recorded_by, const loaded_component& loaded,
                   counterfactual& doubts) {
    if (recorded_by == nullptr) {
        return {fate::no_known_group, misspelt_groups(judged), {}};
    }
    if (loaded.row) {
        return {fate::recorded, {}, {}};
    }
    if (!loaded.succeeded && !loaded.log.empty()) {
        return {fate::failed, texts_of(loaded.log), {}};
    }
    return loaded.log.empty() ? verdict_on_silence(judged, *recorded_by, doubts)
                              : verdict_on_refused(judged, *recorded_by, loaded, doubts);
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
        given.reasons.push_back("the loader looks for " + group + " in components only");
    }
    return given;
}
