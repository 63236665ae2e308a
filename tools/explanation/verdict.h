// SPDX-License-Identifier: Apache-2.0

/// What became of a component, and why.
#ifndef TOOLS_EXPLANATION_VERDICT_H
#define TOOLS_EXPLANATION_VERDICT_H

#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "explanation/component_loader.h"
#include "explanation/counterfactual.h"
#include "explanation/known_settings.h"
#include "explanation/left_out.h"

enum class fate {
    recorded,        ///< it has a row
    refused,         ///< the loader logged why it left no row
    failed,          ///< its row could not be written, and the loader logged why
    incomplete,      ///< settings without which there is no row are missing or unusable
    nothing_known,   ///< the loader knows none of its settings
    not_reached,     ///< the loader does not look where it stands
    no_known_group,  ///< it has no group that the loader records
};

/// A word for it, for programs.
const char* name_of(fate became);

struct verdict {
    fate became;
    /// Why there is no row, a phrase each: the rule and what would have made one, then what there is instead. None when
    /// there is one.
    std::vector<std::string> reasons;
    std::vector<std::string> missing;  ///< the settings for want of which there is none
};

/// On a component that the loader came to. `recorded_by` is the group that it would make a row of, null when there is
/// none; `left_out` is the rule by which there is no row, null without one.
verdict verdict_on(const cds_parser::component& judged, const known_group* recorded_by, const loaded_component& loaded,
                   const left_out_element* left_out, counterfactual& doubts);

/// On a component that the loader did not come to because of `obstacle`; `has_known_group` tells whether it has any
/// group that the loader records.
verdict verdict_on_unreached(const cds_parser::component& judged, bool has_known_group, const std::string& obstacle);

/// On a child slot group with those groups that the loader records: it looks for them in components only.
verdict verdict_on_slots(const std::vector<std::string>& known_groups);

#endif
