// SPDX-License-Identifier: Apache-2.0

#include "console/wrapping.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
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

// In characters, without the control sequences, which are ESC [ ... m.
std::size_t shown_length(const std::string& text) {
    std::string shown;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\033') {
            at = std::min(text.find('m', at), text.size());
        } else {
            shown += text[at];
        }
    }
    return length_of(shown);
}

// Where the first blank is that has no other beside it; the end of `text` where there is none.
std::size_t find_single_blank(const std::string& text, std::size_t from) {
    for (std::size_t at = from; (at = text.find(' ', at)) != std::string::npos;) {
        const std::size_t next = text.find_first_not_of(' ', at);
        if (next == at + 1) {
            return at;
        }
        at = next;
    }
    return text.size();
}

std::string fitted_line(const std::string& line, std::size_t width) {
    constexpr std::size_t hanging = 4;
    const std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
    const std::string below(indent + hanging, ' ');
    std::size_t end = find_single_blank(line, indent);
    std::string text = line.substr(0, end);
    for (std::size_t used = shown_length(text); end < line.size();) {
        const std::size_t begin = end + 1;
        end = find_single_blank(line, begin);
        const std::string words = line.substr(begin, end - begin);
        const std::size_t length = shown_length(words);
        const bool breaks = used + 1 + length > width && below.size() + length <= width;
        text += breaks ? '\n' + below : " ";
        text += words;
        used = (breaks ? below.size() : used + 1) + length;
    }
    return text;
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

std::string fitted_lines(const std::string& text, std::size_t width) {
    if (width == 0) {
        return text;
    }
    std::string fitted;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        fitted += fitted_line(line, width) + '\n';
    }
    return fitted;
}
