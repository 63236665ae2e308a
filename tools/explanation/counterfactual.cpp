// SPDX-License-Identifier: Apache-2.0

#include "explanation/counterfactual.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "explanation/component_loader.h"
#include "explanation/known_settings.h"

namespace {

using cds_parser::component;
using cds_parser::setting_group;
using cds_parser::setting_node;

constexpr const char* usable_number = "1";

// Of questions that are kept with their answers; those about one server have some 10 kB.
constexpr std::size_t most_bytes = std::size_t{1} << 20;

setting_node* new_setting(const std::string& name, const std::string& value, setting_node::setting_value_type type) {
    auto* made = new setting_node(0);
    made->name = name;
    made->value = value;
    made->value_type = type;
    return made;
}

// With every known setting, except that `as_it_is`, if there is one, is what `real` has.
setting_group* new_complete_group(const known_group& known, const setting_group& real, const known_setting* as_it_is) {
    auto* made = new setting_group(0);
    made->name = known.name;
    for (const known_setting& each : known.settings) {
        if (&each != as_it_is) {
            made->add_setting(new_setting(each.name, usable_number, setting_node::integer_value));
        } else if (const setting_node* found = real.get_setting(each.name)) {
            made->add_setting(new_setting(each.name, found->value, found->value_type));
        }
    }
    return made;
}

setting_group* new_empty_group(const known_group& known) {
    auto* made = new setting_group(0);
    made->name = known.name;
    return made;
}

std::unique_ptr<component> new_component(const component& real, const known_group& complete,
                                         const known_setting* as_it_is) {
    auto made = std::make_unique<component>(0);
    for (const known_group& known : known_groups()) {
        if (const setting_group* group = real.get_setting_group(known.name)) {
            made->add_setting_group(&known == &complete ? new_complete_group(known, *group, as_it_is)
                                                        : new_empty_group(known));
        }
    }
    return made;
}

// Different for questions about different made-up components.
std::string question_about(const component& real, const known_group& complete, const known_setting* as_it_is) {
    std::string question;
    for (const known_group& known : known_groups()) {
        question += real.has_setting_group(known.name) ? '1' : '0';
    }
    question += complete.name;
    if (as_it_is == nullptr) {
        return question;
    }
    question += std::string("/") + as_it_is->name;
    const setting_node* found = real.get_setting_group(complete.name)->get_setting(as_it_is->name);
    return found == nullptr ? question : question + '/' + std::to_string(found->value_type) + '/' + found->value;
}

}  // namespace

const known_group* counterfactual::recorded_group(const component& real) {
    for (const known_group& known : known_groups()) {
        const answer given = ask(real, known);
        if (given.recorded || given.logged) {
            return &known;
        }
    }
    return nullptr;
}

std::vector<std::string> counterfactual::settings_to_blame(const component& real, const known_group& group,
                                                           bool logged) {
    std::vector<std::string> blamed;
    for (const known_setting& suspect : group.settings) {
        const answer given = ask(real, group, &suspect);
        if (!given.recorded && given.logged == logged) {
            blamed.emplace_back(suspect.name);
        }
    }
    return blamed;
}

// The loader keeps the rows of what it was asked: when they are too many, it begins anew, without an answer.
component_loader& counterfactual::loader() {
    if (!loader_ || bytes_ > most_bytes) {
        answers_.clear();
        bytes_ = 0;
        loader_.emplace();
    }
    return *loader_;
}

counterfactual::answer counterfactual::ask(const component& real, const known_group& complete,
                                           const known_setting* as_it_is) {
    component_loader& loader = this->loader();
    const auto [known, is_new] = answers_.try_emplace(question_about(real, complete, as_it_is));
    if (is_new) {
        bytes_ += known->first.size();
        const auto loaded = loader.load(*new_component(real, complete, as_it_is), component_loader::no_parent);
        known->second = {loaded.row.has_value(), !loaded.log.empty()};
    }
    return known->second;
}
