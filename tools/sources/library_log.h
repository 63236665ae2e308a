// SPDX-License-Identifier: Apache-2.0

/// What the library and the platform log while they work for a subcommand.
#ifndef TOOLS_SOURCES_LIBRARY_LOG_H
#define TOOLS_SOURCES_LIBRARY_LOG_H

#include <optional>
#include <string>
#include <vector>

#include <vonk_log_workstation.h>

#include "console/progress.h"

struct log_line {
    vonk_log::level at;
    std::string text;  ///< UTF-8
};

/// Where the lines go besides being remembered.
enum class log_display {
    shown,     ///< on to their usual place
    problems,  ///< likewise, but for those that only inform
    errors,    ///< likewise, but for all that are no errors
    hidden,    ///< nowhere
};

/// Whether their usual place is a terminal.
bool log_goes_to_a_terminal();

/// Takes the log of the process as long as it lives, and remembers every line and the first failure of the database.
/// One at a time.
class library_log {
public:
    explicit library_log(log_display display = log_display::shown);
    /// Lines are shown above the progress line.
    explicit library_log(progress& line, log_display display = log_display::shown);
    ~library_log();
    library_log(const library_log&) = delete;
    library_log& operator=(const library_log&) = delete;

    const std::vector<log_line>& lines() const { return lines_; }

    /// What the database could not do first, and what to do about it, in one line; nothing when it could do everything.
    std::optional<std::string> database_failure() const;

    /// The same, or else the first error that was logged: those behind it are its consequences. Empty without any.
    std::string problem() const;

private:
    bool is_shown(vonk_log::level at) const;
    static void take(void* log, vonk_log::level at, const char* text);

    log_display display_;
    progress* progress_ = nullptr;
    std::vector<log_line> lines_;
};

#endif
