// SPDX-License-Identifier: Apache-2.0

#include "rows/serial_number.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

namespace {

// In lower case, letters and digits only.
constexpr const char* placeholders[] = {
    "0123456789",
    "123456789",
    "1234567890",
    "12345678",
    "defaultstring",
    "dimmmissing",
    "empty",
    "fillbyoem",
    "invalid",
    "modulemissing",
    "na",
    "no",
    "noasset",
    "nocpu",
    "nodimm",
    "nomodule",
    "none",
    "noserial",
    "noserialnumber",
    "notapplicable",
    "notavailable",
    "notinstalled",
    "notpresent",
    "notprovided",
    "notset",
    "notspecified",
    "null",
    "outofspec",
    "serialnumber",
    "systemserialnumber",
    "tobefilledbyoem",
    "undefined",
    "unknown",
    "unspecified",
};

bool is_blank(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

bool is_digit(char character) {
    return character >= '0' && character <= '9';
}

bool is_lower_case(char character) {
    return character >= 'a' && character <= 'z';
}

char lower_case(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

// What is left of a text without ASCII punctuation, which firmware adds and drops freely.
std::string letters_and_digits(const std::string& text) {
    std::string left;
    for (const char character : text) {
        const char lower = lower_case(character);
        if (is_digit(lower) || is_lower_case(lower) || (static_cast<unsigned char>(lower) & 0x80) != 0) {
            left += lower;
        }
    }
    return left.compare(0, 2, "0x") == 0 ? left.substr(2) : left;
}

bool is_one_character(const std::string& text) {
    return text.find_first_not_of(text.substr(0, 1)) == std::string::npos;
}

}  // namespace

std::string without_blanks_around(const std::string& text) {
    const auto first = std::find_if_not(text.begin(), text.end(), is_blank);
    const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), is_blank);
    return {first, last.base()};
}

std::optional<std::string> real_serial_number(const std::string& text) {
    const std::string core = letters_and_digits(text);
    const auto is_core = [&core](const char* placeholder) { return core == placeholder; };
    if (is_one_character(core) || std::any_of(std::begin(placeholders), std::end(placeholders), is_core)) {
        return std::nullopt;
    }
    return without_blanks_around(text);
}
