// SPDX-License-Identifier: Apache-2.0

/// Times as people and programs write them.
#ifndef TOOLS_CONSOLE_TIME_TEXT_H
#define TOOLS_CONSOLE_TIME_TEXT_H

#include <chrono>
#include <ctime>
#include <optional>
#include <string>

/// A time as exact as files and databases keep them.
using moment = std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

/// As in "2026-11-19 10:00:00 UTC"; empty for a time that no calendar has.
std::string time_text(std::time_t time);

/// As in "2026-11-19T10:00:00Z".
std::string rfc3339_text(std::time_t time);

/// The same, with microseconds where there are any: "2026-11-19T10:00:00.250000Z".
std::string rfc3339_text(moment time);

/// The time that `text` is by RFC 3339; nothing when it is none.
std::optional<moment> rfc3339_time(const std::string& text);

/// The time that the system tells of a file; nothing when RFC 3339 has no year for it.
std::optional<moment> moment_of(const std::timespec& time);

/// Its second.
std::time_t second_of(moment time);

#endif
