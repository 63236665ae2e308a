// SPDX-License-Identifier: Apache-2.0

/// What came of everything, counted.
#ifndef TESTS_SOAK_TALLY_H
#define TESTS_SOAK_TALLY_H

#include <iomanip>
#include <map>
#include <mutex>
#include <ostream>
#include <string>

class tally {
public:
    void count(const std::string& what) {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++counts_[what];
    }

    void print(std::ostream& out) const {
        const std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& [what, count] : counts_) {
            out << std::setw(8) << count << "  " << what << '\n';
        }
    }

private:
    mutable std::mutex mutex_;
    std::map<std::string, long> counts_;
};

#endif
