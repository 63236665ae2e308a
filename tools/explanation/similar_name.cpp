// SPDX-License-Identifier: Apache-2.0

#include "explanation/similar_name.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <numeric>
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
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        before_last.swap(last);
        last.swap(row);
        row[0] = i + 1;
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t changed = last[j] + (from[i] == to[j] ? 0 : 1);
            row[j + 1] = std::min({changed, last[j + 1] + 1, row[j] + 1});
            if (i > 0 && j > 0 && from[i] == to[j - 1] && from[i - 1] == to[j]) {
                row[j + 1] = std::min(row[j + 1], before_last[j - 1] + 1);
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
    std::size_t fewest = std::numeric_limits<std::size_t>::max();
    for (const char* each : known) {
        const std::string candidate = simplified(each);
        const std::size_t longer = std::max(wanted.size(), candidate.size());
        const std::size_t shorter = std::min(wanted.size(), candidate.size());
        const std::size_t most = longer / characters_a_change;
        if (longer - shorter > most) {
            continue;
        }
        const std::size_t changes = distance(wanted, candidate);
        if (changes <= most && changes < fewest) {
            nearest = each;
            fewest = changes;
        }
    }
    return nearest;
}
