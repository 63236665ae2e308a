/// What the library and the platform log while a file is loaded.
#ifndef TOOLS_LOAD_LOG_H
#define TOOLS_LOAD_LOG_H

#include <string>

#include <vonk_log_workstation.h>

#include "progress.h"

/// Takes the log of the process as long as it lives, passes every line on to its usual place, above the progress line,
/// and remembers why the load will fail.
class load_log {
public:
    explicit load_log(progress& line);
    ~load_log();
    load_log(const load_log&) = delete;
    load_log& operator=(const load_log&) = delete;

    /// The cause of the failure, one line.
    std::string cause() const;

    /// Whether the cause is content that breaks the grammar; the log does not say where it stands.
    bool is_grammar_error() const;

private:
    static void take(void* log, vonk_log::level at, const char* text);

    progress& line_;
    std::string database_error_;  // the first one; those after it are its consequences
    std::string last_error_;
};

#endif
