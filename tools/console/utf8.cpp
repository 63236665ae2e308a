// SPDX-License-Identifier: Apache-2.0

#include "console/utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string>

namespace {

constexpr const char* replacement_character = "\xEF\xBF\xBD";

// The bytes of one kind of character: how many there are, which bits of the first one mark it and the smallest
// character that may be written so.
struct encoding {
    std::size_t length;
    std::uint32_t mask;
    std::uint32_t mark;
    std::uint32_t smallest;
};

constexpr encoding encodings[] = {
    {1, 0x80, 0x00, 0x0},
    {2, 0xE0, 0xC0, 0x80},
    {3, 0xF0, 0xE0, 0x800},
    {4, 0xF8, 0xF0, 0x10000},
};

struct decoded {
    std::uint32_t character;
    std::size_t length;  // in bytes; 0 when they are not UTF-8
};

std::uint32_t byte_at(const std::string& text, std::size_t place) {
    return static_cast<unsigned char>(text[place]);  // at the end a zero, which continues no character
}

bool is_continuation(std::uint32_t byte) {
    return (byte & 0xC0) == 0x80;
}

bool is_character(std::uint32_t number) {
    const bool is_surrogate = number >= 0xD800 && number <= 0xDFFF;
    return number <= 0x10FFFF && !is_surrogate;
}

decoded decode(const std::string& text, std::size_t place) {
    const std::uint32_t first = byte_at(text, place);
    for (const encoding& kind : encodings) {
        if ((first & kind.mask) != kind.mark) {
            continue;
        }
        std::uint32_t character = first & ~kind.mask;
        for (std::size_t i = 1; i < kind.length; ++i) {
            const std::uint32_t next = byte_at(text, place + i);
            if (!is_continuation(next)) {
                return {0, 0};
            }
            character = character << 6 | (next & 0x3F);
        }
        const bool valid = character >= kind.smallest && is_character(character);
        return {character, valid ? kind.length : 0};
    }
    return {0, 0};
}

__attribute__((format(printf, 1, 0))) std::string hexadecimal(const char* format, std::uint32_t number) {
    char text[8];
    std::snprintf(text, sizeof text, format, static_cast<unsigned>(number));
    return text;
}

std::string escaped(std::uint32_t control) {
    switch (control) {
        case '\t':
            return "\\t";
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        default:
            return hexadecimal(control < 0x100 ? "\\x%02x" : "\\u%04x", control);
    }
}

// Of what is not printable ASCII. What turns the direction of writing makes a text look like another one.
bool is_control(std::uint32_t character) {
    const bool turns_direction =
        (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
    return character < 0xA0 || turns_direction;
}

// Adds the printable ASCII characters that stand at `place` to `result`, since most of any text are such, and gives the
// place behind them.
std::size_t add_plain_characters(std::string& result, const std::string& text, std::size_t place) {
    const auto is_plain = [](char character) { return character >= ' ' && character <= '~'; };
    const auto first = std::next(text.begin(), static_cast<std::ptrdiff_t>(place));
    const auto last = std::find_if_not(first, text.end(), is_plain);
    result.append(first, last);
    return static_cast<std::size_t>(last - text.begin());
}

// UTF-8 `text` with those characters that `is_written` chooses, none of which is printable ASCII, as `write` writes
// them.
template <class Choose, class Write>
std::string with_characters(const std::string& text, Choose is_written, Write write) {
    std::string result;
    std::size_t place = 0;
    while ((place = add_plain_characters(result, text, place)) < text.size()) {
        const decoded next = decode(text, place);
        const std::size_t length = std::max<std::size_t>(next.length, 1);
        if (next.length != 0 && is_written(next.character)) {
            result += write(next.character);
        } else {
            result.append(text, place, length);
        }
        place += length;
    }
    return result;
}

}  // namespace

std::string repaired_utf8(const std::string& text) {
    std::string repaired;
    std::size_t place = 0;
    while ((place = add_plain_characters(repaired, text, place)) < text.size()) {
        const std::size_t length = decode(text, place).length;
        if (length == 0) {
            repaired += replacement_character;
            ++place;
        } else {
            repaired.append(text, place, length);
            place += length;
        }
    }
    return repaired;
}

std::string printable(const std::string& text) {
    return with_characters(repaired_utf8(text), is_control, escaped);
}

std::string printable_lines(const std::string& text) {
    std::string shown;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        shown += printable(text.substr(start, end - start)) + '\n';
        start = end + 1;
    }
    return shown;
}

std::string harmless_json(const std::string& text) {
    const auto is_left_by_json = [](std::uint32_t character) { return character >= 0x20 && is_control(character); };
    const auto escaped_for_json = [](std::uint32_t control) { return hexadecimal("\\u%04x", control); };
    return with_characters(text, is_left_by_json, escaped_for_json);
}

std::size_t length_of(const std::string& text) {
    std::size_t length = 0;
    for (std::size_t place = 0; place < text.size(); ++place) {
        length += is_continuation(byte_at(text, place)) ? 0 : 1;
    }
    return length;
}

std::string first_characters(const std::string& text, std::size_t length) {
    std::size_t place = 0;
    for (std::size_t i = 0; i < length && place < text.size(); ++i) {
        place += std::max<std::size_t>(decode(text, place).length, 1);
    }
    return text.substr(0, place);
}
