// SPDX-License-Identifier: Apache-2.0

#include "explanation/left_out_phrases.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include "explanation/left_out.h"

namespace {

// In the words of a summary, of one component and of several; the verb is left away behind itself.
struct omission_phrase {
    omission why;
    const char* name;
    const char* verb_for_one;
    const char* verb;
    const char* what;
};

constexpr omission_phrase phrases[] = {
    {omission::no_location, "no_location", "has", "have", "no location"},
    {omission::no_address, "no_address", "has", "have", "no address"},
    {omission::nothing_known, "nothing_known", "has", "have", "no setting that is known"},
    {omission::recorded_once, "recorded_once", "belongs", "belong", "to a card that is recorded once"},
    {omission::not_reached, "not_reached", "stands", "stand", "where the loader does not look"},
};

const omission_phrase& phrase_of(omission rule) {
    return *std::find_if(std::begin(phrases), std::end(phrases),
                         [rule](const omission_phrase& each) { return each.why == rule; });
}

}  // namespace

const char* name_of(omission rule) {
    return phrase_of(rule).name;
}

std::string omission_text(omission rule, std::size_t count) {
    const omission_phrase& phrase = phrase_of(rule);
    return std::string(count == 1 ? phrase.verb_for_one : phrase.verb) + ' ' + phrase.what;
}

std::string left_out_text(const std::vector<left_out_element>& left_out) {
    if (left_out.empty()) {
        return "";
    }
    std::string text =
        std::to_string(left_out.size()) + (left_out.size() == 1 ? " component" : " components") + " left no row: ";
    const char* separator = "";
    std::string last_verb;
    for (const omission_phrase& phrase : phrases) {
        const auto count = std::count_if(left_out.begin(), left_out.end(),
                                         [&phrase](const left_out_element& each) { return each.why == phrase.why; });
        if (count != 0) {
            const std::string verb = count == 1 ? phrase.verb_for_one : phrase.verb;
            text += separator + std::to_string(count) + ' ' + (verb == last_verb ? "" : verb + ' ') + phrase.what;
            separator = ", ";
            last_verb = verb;
        }
    }
    return text;
}
