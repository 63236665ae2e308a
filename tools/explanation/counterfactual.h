// SPDX-License-Identifier: Apache-2.0

/// What the loader would do if a component were another one.
#ifndef TOOLS_EXPLANATION_COUNTERFACTUAL_H
#define TOOLS_EXPLANATION_COUNTERFACTUAL_H

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "explanation/component_loader.h"
#include "explanation/known_settings.h"

/// Asks the loader itself, with made-up components. What it answered about one document holds for every other, so that
/// one of these for many of them costs less, and never more memory than for a large one.
class counterfactual {
public:
    /// The group of which the loader would make a row, or would try to, if all that is known were in it; null when the
    /// component has none that the loader records.
    const known_group* recorded_group(const cds_parser::component& real);

    /// The settings of `group` that alone keep the component without a row: with each of them as it is, or is not
    /// there, and everything else as it should be, the loader leaves no row. `logged` asks for those where it says so,
    /// else for those where it says nothing.
    std::vector<std::string> settings_to_blame(const cds_parser::component& real, const known_group& group,
                                               bool logged);

private:
    struct answer {
        bool recorded;
        bool logged;
    };

    // What the loader does when `complete` has every known setting, except that `as_it_is`, if there is one, is what
    // `real` has, and the other groups of `real` are empty.
    answer ask(const cds_parser::component& real, const known_group& complete, const known_setting* as_it_is = nullptr);

    component_loader& loader();

    std::optional<component_loader> loader_;
    std::map<std::string, answer> answers_;  // most components of a file raise the same questions
    std::size_t bytes_ = 0;                  // of the questions
};

#endif
