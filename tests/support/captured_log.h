// SPDX-License-Identifier: Apache-2.0

#ifndef TESTS_SUPPORT_CAPTURED_LOG_H
#define TESTS_SUPPORT_CAPTURED_LOG_H

#include <string>
#include <vector>

#include <vonk_log_workstation.h>

/// Takes the log lines of the process as long as it lives, written as "ERROR: text", "WARNING: text" or "INFO: text".
class captured_log {
public:
    captured_log() { vonk_log::set_sink(take, this); }
    ~captured_log() { vonk_log::set_sink(nullptr, nullptr); }
    captured_log(const captured_log&) = delete;
    captured_log& operator=(const captured_log&) = delete;

    std::vector<std::string> lines;

private:
    static void take(void* context, vonk_log::level at, const char* text) {
        static constexpr const char* prefixes[] = {"ERROR: ", "WARNING: ", "INFO: "};
        static_cast<captured_log*>(context)->lines.push_back(std::string(prefixes[static_cast<int>(at)]) + text);
    }
};

#endif
