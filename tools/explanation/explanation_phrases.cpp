// SPDX-License-Identifier: Apache-2.0

#include "explanation/explanation_phrases.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "explanation/explanation.h"
#include "explanation/odd_values.h"
#include "explanation/unused_settings.h"
#include "rows/fields.h"
#include "rows/table.h"

namespace {

struct correction {
    const char* column;
    const char* cause;
};

// Where the loader does not believe what it reads.
constexpr correction corrections[] = {
    {"SlotNo", "the slot of storage on the board is 0"},
    {"ClsCode", "the device is known to report a misleading one"},
};

std::string replaced_text(const odd_value& odd) {
    const auto* found = std::find_if(std::begin(corrections), std::end(corrections),
                                     [&odd](const correction& each) { return each.column == odd.column; });
    return found == std::end(corrections) ? " is replaced by the loader"
                                          : std::string(" does not count, because ") + found->cause;
}

struct idle_rule {
    idleness why;
    const char* rule;
    const char* of_a_setting;
};

constexpr idle_rule idle_rules[] = {
    {idleness::other_record, "another kind of record has columns for some settings", "which this record does not take"},
    {idleness::second_group, "of several groups of a name only the first is read",
     "which stands in a second group of that name"},
    {idleness::not_persistent,
     "only a persistent module, which has bit 12 of 'Type Detail' and the 'Manufacturer' Intel, has columns for some "
     "settings",
     "which this record does not take"},
    {idleness::no_number, "some settings count as absent where they are negative or no number",
     "which is negative or no number"},
};

// Null for a setting that the loader does not know.
const idle_rule* rule_for(const unused_setting& unused) {
    const auto* found = std::find_if(std::begin(idle_rules), std::end(idle_rules),
                                     [&unused](const idle_rule& each) { return each.why == unused.why; });
    return found == std::end(idle_rules) ? nullptr : found;
}

}  // namespace

std::string quoted_in(const std::string& setting, const std::string& group) {
    return "'" + setting + "' in " + group;
}

std::string unused_text(const unused_setting& unused) {
    const std::string text = quoted_in(unused.name, unused.group);
    if (const idle_rule* found = rule_for(unused)) {
        return text + ", " + found->of_a_setting;
    }
    return unused.similar == nullptr ? text : text + "; '" + unused.similar + "' may be meant";
}

const char* rule_against(const unused_setting& unused) {
    const idle_rule* found = rule_for(unused);
    return found == nullptr ? nullptr : found->rule;
}

std::string oddity_text(const odd_value& odd) {
    const std::string text = quoted_in(odd.setting, odd.group);
    switch (odd.what) {
        case oddity::text_for_number:
            return text + " is text where a number is taken";
        case oddity::no_number:
            return text + " is no number";
        case oddity::too_large:
            return text + " has more bits than its column";
        case oddity::replaced:
            break;
    }
    return text + replaced_text(odd);
}

std::string stored_text(const odd_value& odd, const explanation& told) {
    if (!is_put(odd.stored)) {
        return odd.value;
    }
    return odd.value + " is stored as " + unit_of(*told.recorded_by->kind, odd.column)(odd.stored) + " in " +
           odd.column;
}
