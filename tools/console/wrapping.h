// SPDX-License-Identifier: Apache-2.0

/// Texts in lines of a certain width.
#ifndef TOOLS_CONSOLE_WRAPPING_H
#define TOOLS_CONSOLE_WRAPPING_H

#include <cstddef>
#include <string>
#include <vector>

/// UTF-8 `text` in lines of at most `width` characters, 1 or more. It is broken at blanks, which end there, and within
/// a word only where that is longer than a line. An empty text is one empty line.
std::vector<std::string> wrapped(const std::string& text, std::size_t width);

/// `text`, UTF-8 lines, with those that are longer than `width` characters, 0 for any, broken at single blanks: what
/// goes on is indented by four more. A word that no line has room for stays where it is, so that it can be copied, and
/// several blanks stay together. Control sequences that style the text take no room.
std::string fitted_lines(const std::string& text, std::size_t width);

#endif
