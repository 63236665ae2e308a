// SPDX-License-Identifier: Apache-2.0

#include "console/wrapping.h"

#include <cstddef>
#include <string>
#include <vector>

#include "console/utf8.h"

namespace {

// How much of `text` goes into a line: up to the last blank that fits, else as many characters as do.
std::size_t bytes_of_line(const std::string& text, std::size_t width) {
    const std::string fitting = first_characters(text, width);
    if (fitting.size() == text.size() || text[fitting.size()] == ' ') {
        return fitting.size();
    }
    const std::size_t blank = fitting.find_last_of(' ');
    const bool only_blanks_before = blank == std::string::npos || fitting.find_first_not_of(' ') > blank;
    return only_blanks_before ? fitting.size() : blank;
}

}  // namespace

std::vector<std::string> wrapped(const std::string& text, std::size_t width) {
    std::vector<std::string> lines;
    std::string left = text;
    do {
        const std::size_t end = bytes_of_line(left, width);
        std::string line = left.substr(0, end);
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
        const std::size_t next = left.find_first_not_of(' ', end);
        left = next == std::string::npos ? "" : left.substr(next);
    } while (!left.empty());
    return lines;
}
