// SPDX-License-Identifier: Apache-2.0

/// Processes that are killed before they are done.
#ifndef TESTS_SOAK_PROCESS_H
#define TESTS_SOAK_PROCESS_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

using moment = std::chrono::steady_clock::time_point;

struct planned_kill {
    int signal;
    std::chrono::microseconds after;  ///< the start, unless the process has ended by then
};

struct ended_process {
    std::string command;  ///< for people
    moment start;
    moment end;
    int status = 0;  ///< as a shell tells it
    int signal = 0;  ///< that ended it; 0 for none
    std::string out;
    std::string err;

    /// The line that the program itself adds behind the log.
    std::string last_error_line() const;
};

/// Once, before any thread: orphans of the processes become this one's own children.
void adopt_orphans();

/// Runs a program and waits for it and all that it has started; the kill is for the program alone. Throws
/// std::runtime_error when it cannot be started or does not end.
ended_process run(std::vector<std::string> command, const std::optional<planned_kill>& kill = std::nullopt);

#endif
