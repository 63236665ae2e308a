// SPDX-License-Identifier: Apache-2.0

/// What a reader of a database may find in it, whoever wrote to it when.
#ifndef TESTS_SOAK_WRITE_HISTORY_H
#define TESTS_SOAK_WRITE_HISTORY_H

#include <algorithm>
#include <map>
#include <mutex>
#include <string>

#include "soak/process.h"

/// Each write takes the database to a revision of its own.
class write_history {
public:
    enum class outcome {
        under_way,
        committed,
        unknown,  ///< was killed
        refused,
    };

    void begin(int revision, moment start) {
        const std::lock_guard<std::mutex> lock(mutex_);
        writes_[revision] = {start, moment::max(), outcome::under_way, false};
    }

    /// A write that somebody has found is committed, whatever became of who wrote it; false where it was refused.
    bool end(int revision, moment end, outcome result) {
        const std::lock_guard<std::mutex> lock(mutex_);
        write& ended = writes_[revision];
        ended.end = end;
        ended.result = ended.was_found && result == outcome::unknown ? outcome::committed : result;
        return result != outcome::refused || !ended.was_found;
    }

    /// Why somebody who read between those moments cannot have found that revision; empty when he can.
    std::string objection(int revision, moment start, moment end) {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = writes_.find(revision);
        if (found == writes_.end() || found->second.start > end) {
            return "nobody had begun to write it";
        }
        if (found->second.result == outcome::refused) {
            return "its write was refused";
        }
        const auto replaces = [&read = found->second, start](const auto& other) {
            return other.second.result == outcome::committed && other.second.end < start &&
                   other.second.start > read.end;
        };
        found->second.was_found = true;
        if (found->second.result == outcome::unknown) {
            found->second.result = outcome::committed;
        }
        const auto later = std::find_if(writes_.begin(), writes_.end(), replaces);
        return later == writes_.end() ? "" : "it was replaced by revision " + std::to_string(later->first) + " before";
    }

    bool has_committed() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::any_of(writes_.begin(), writes_.end(),
                           [](const auto& each) { return each.second.result == outcome::committed; });
    }

private:
    struct write {
        moment start;
        moment end;
        outcome result;
        bool was_found;
    };

    mutable std::mutex mutex_;
    std::map<int, write> writes_;
};

#endif
