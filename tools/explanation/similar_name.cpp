// SPDX-License-Identifier: Apache-2.0

#include "explanation/similar_name.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace {

// Names are ASCII where they matter; the rest only has to be the same for the same text.
std::string simplified(const std::string& name) {
    std::string letters;
    for (const char each : name) {
        if (each != ' ' && each != '_' && each != '-') {
            letters += each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
        }
    }
    return letters;
}

// Of Damerau and Levenshtein, every part of the text changed once at most.
std::size_t distance(const std::string& from, const std::string& to) {
    std::vector<std::size_t> before_last(to.size() + 1);
    std::vector<std::size_t> last(to.size() + 1);
    std::vector<std::size_t> row(to.size() + 1);
    for (std::size_t j = 0; j <= to.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= from.size(); ++i) {
        before_last.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t changed = last[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            row[j] = std::min({changed, last[j] + 1, row[j - 1] + 1});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                row[j] = std::min(row[j], before_last[j - 2] + 1);
            }
        }
    }
    return row.back();
}

}  // namespace

const char* most_similar(const std::string& name, const std::vector<const char*>& known,
                         std::size_t characters_a_change) {
    const std::string wanted = simplified(name);
    const char* nearest = nullptr;
    std::size_t fewest = 0;
    for (const char* each : known) {
        const std::string candidate = simplified(each);
        const std::size_t longer = std::max(wanted.size(), candidate.size());
        const std::size_t shorter = std::min(wanted.size(), candidate.size());
        const std::size_t most = longer / characters_a_change;
        if (longer - shorter > most) {
            continue;
        }
        const std::size_t changes = distance(wanted, candidate);
        if (changes <= most && (nearest == nullptr || changes < fewest)) {
            nearest = each;
            fewest = changes;
        }
    }
    return nearest;
}
