// SPDX-License-Identifier: Apache-2.0

/// Text as people see it: characters instead of bytes.
#ifndef TOOLS_CONSOLE_UTF8_H
#define TOOLS_CONSOLE_UTF8_H

#include <cstddef>
#include <string>

/// `text` with a replacement character (U+FFFD) for every part that is not UTF-8.
std::string repaired_utf8(const std::string& text);

/// `text` as UTF-8 with its control characters, and those that turn the direction of writing, written as \n, \t, \x1b
/// or \u202e, so that it stays on its line, cannot steer a terminal and looks like what it is.
std::string printable(const std::string& text);

/// The same for each line of `text`. The last one ends, too.
std::string printable_lines(const std::string& text);

/// JSON `text` with those characters of its strings that printable() would write otherwise as \u009b or \u202e, which
/// means the same.
std::string harmless_json(const std::string& text);

/// How many characters UTF-8 `text` has.
std::size_t length_of(const std::string& text);

/// The first `length` characters of UTF-8 `text`.
std::string first_characters(const std::string& text, std::size_t length);

#endif
