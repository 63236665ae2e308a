/// What the library and the platform log while they work for a subcommand.
#ifndef TOOLS_SOURCES_LIBRARY_LOG_H
#define TOOLS_SOURCES_LIBRARY_LOG_H

#include <string>
#include <vector>

#include <vonk_log_workstation.h>

#include "console/progress.h"

/// Takes the log of the process as long as it lives, passes every line on to its usual place and remembers it. One at a
/// time.
class log_tap {
public:
    /// Lines are written above the progress line, if there is one.
    explicit log_tap(progress* line = nullptr);
    ~log_tap();
    log_tap(const log_tap&) = delete;
    log_tap& operator=(const log_tap&) = delete;

    /// Why the library failed, in one line; empty when it logged no error.
    std::string cause() const;

    /// Whether the cause is content that breaks the grammar; the log does not say where it stands.
    bool is_grammar_error() const;

    /// Whether a line that begins like this was logged.
    bool has_line(const std::string& beginning) const;

private:
    static void take(void* tap, vonk_log::level at, const char* text);

    progress* line_;
    std::vector<std::string> lines_;
    std::string database_error_;  // the first one; those after it are its consequences
    std::string last_error_;
};

#endif
