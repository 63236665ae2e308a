// SPDX-License-Identifier: Apache-2.0

#include "explanation/explanation_phrases.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "explanation/explanation.h"
#include "explanation/odd_values.h"
#include "explanation/unused_settings.h"
#include "rows/fields.h"
#include "rows/kinds.h"
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

constexpr const char* persistent_modules_only =
    "only a persistent module, which has bit 12 of 'Type Detail' and the 'Manufacturer' Intel, has columns for some "
    "settings";
constexpr const char* other_records_only = "another kind of record has columns for some settings";

}  // namespace

std::string quoted_in(const std::string& setting, const std::string& group) {
    return "'" + setting + "' in " + group;
}

std::string unused_text(const unused_setting& unused) {
    const std::string text = quoted_in(unused.name, unused.group);
    if (unused.is_known) {
        return text + ", which this record does not take";
    }
    return unused.similar == nullptr ? text : text + "; '" + unused.similar + "' may be meant";
}

bool is_of_memory(const unused_setting& unused, const explanation& told) {
    return told.recorded_by != nullptr && told.recorded_by->kind == &kinds::memory &&
           unused.group == told.recorded_by->name;
}

const char* rule_against(const unused_setting& unused, const explanation& told) {
    return is_of_memory(unused, told) ? persistent_modules_only : other_records_only;
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
