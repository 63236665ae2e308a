// SPDX-License-Identifier: Apache-2.0

/// Times as people and programs write them.
#ifndef TOOLS_CONSOLE_TIME_TEXT_H
#define TOOLS_CONSOLE_TIME_TEXT_H

#include <ctime>
#include <optional>
#include <string>

/// As in "2026-11-19 10:00:00 UTC"; empty for a time that no calendar has.
std::string time_text(std::time_t time);

/// As in "2026-11-19T10:00:00Z".
std::string rfc3339_text(std::time_t time);

/// The time that `text` is by RFC 3339, without its fraction of a second; nothing when it is none.
std::optional<std::time_t> rfc3339_time(const std::string& text);

#endif
