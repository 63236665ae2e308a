// SPDX-License-Identifier: Apache-2.0

#include "zebdb_cds_parser/setting_node.h"

#include <locale.h>
#include <stdlib.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <system_error>

#include "value_tags.h"
#include "zebdb_cds_parser/element.h"

namespace cds_parser {
namespace {

bool is_true(const std::string& text) {
    return text == "true" || text == "1";
}

// What strtoll() gives, without it for nothing but digits, which nearly all values are.
long long integer_in(const std::string& text, int base) {
    const char* end = text.data() + text.size();
    std::uint32_t digits = 0;
    const auto [rest, error] = std::from_chars(text.data(), end, digits, base == 0 ? 10 : base);
    const bool is_octal = base == 0 && text[0] == '0';
    return rest == end && error == std::errc() && !is_octal ? digits : std::strtoll(text.c_str(), nullptr, base);
}

// In the C locale's form, whatever locale the process has set.
double decimal_in(const std::string& text) {
    static const auto c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text.c_str(), nullptr, c_locale);
}

// Converting a double that does not fit an integer is undefined; like strtoll() this saturates, and NaN is no number.
long long truncated(double value) {
    constexpr double first_above = 9223372036854775808.0;  // 2^63
    if (value >= first_above) {
        return std::numeric_limits<long long>::max();
    }
    if (value < -first_above) {
        return std::numeric_limits<long long>::min();
    }
    return value == value ? static_cast<long long>(value) : 0;
}

}  // namespace

const char* setting_node::TAG = "setting";

setting_node::setting_node(std::uint32_t nesting_level) : element(nesting_level), value_type(unknow_value) {}

setting_node::~setting_node() = default;

element_type setting_node::get_type() const {
    return setting_node_type;
}

const char* setting_node::map_value_type(setting_value_type type) {
    const auto number = static_cast<unsigned>(type);
    return number < unknow_value ? value_tags[number] : value_tags[unknow_value];
}

long long setting_node::get_int64(long long default_value) const {
    switch (value_type) {
        case hex_value:
            return integer_in(value, 16);
        case integer_value:
            return integer_in(value, 0);
        case decimal_value:
            return truncated(decimal_in(value));
        case bool_value:
            return is_true(value) ? 1 : 0;
        default:
            return default_value;
    }
}

double setting_node::get_double(double default_value) const {
    switch (value_type) {
        case decimal_value:
            return decimal_in(value);
        case hex_value:
        case integer_value:
        case bool_value:
            return static_cast<double>(get_int64(0));
        default:
            return default_value;
    }
}

}  // namespace cds_parser
