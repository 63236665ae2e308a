// SPDX-License-Identifier: Apache-2.0

/// @file
/// Where the log goes on a workstation: standard error with the level in front, or the system's log when the
/// environment holds VONK_LOG=syslog. A program may take the lines itself.
#ifndef VONK_LOG_WORKSTATION_H
#define VONK_LOG_WORKSTATION_H

#include <vonk_log.h>

#pragma GCC visibility push(default)
namespace vonk_log {

/// How bad it is.
enum class level {
    error,    ///< something failed
    warning,  ///< something is odd
    info,     ///< something was done
};

/// Takes one log text, without a level and as it was formatted; `context` is what set_sink() was given.
using sink = void (*)(void* context, level at, const char* text);

/// Hands every further line of the process to `taken_by`; null restores the usual place. Not for use while another
/// thread logs.
void set_sink(sink taken_by, void* context);

/// Whether the usual place is the system's log.
bool goes_to_syslog();

/// Writes a line to the usual place, whatever the sink. On standard error control characters but tabs and line ends are
/// written as escapes, a backslash and x1b say.
void write(level at, const char* text);

}  // namespace vonk_log
#pragma GCC visibility pop

#endif
