// SPDX-License-Identifier: Apache-2.0

#include "rows/column_units.h"

#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string>

#include "console/utf8.h"
#include "rows/enumerations.h"
#include "rows/table.h"

namespace {

std::string with_unit(const inventory_value& value, const char* unit) {
    const auto number = number_in(value);
    return number ? std::to_string(*number) + unit : column_units::none;
}

constexpr const char* size_units[] = {" B", " KiB", " MiB", " GiB", " TiB", " PiB"};
enum size_unit : std::size_t { byte, kibibyte, mebibyte };

// Whole as long as that takes four digits at most, as in 1536 MiB; else with one decimal, as in 126.4 GiB.
std::string size(const inventory_value& value, std::size_t unit) {
    constexpr std::size_t largest_unit = std::size(size_units) - 1;
    constexpr std::uint64_t too_long = 10000;
    const auto number = number_in(value);
    if (!number) {
        return column_units::none;
    }
    std::uint64_t whole = *number;
    for (; unit < largest_unit && whole != 0 && whole % 1024 == 0; ++unit) {
        whole /= 1024;
    }
    if (whole < too_long) {
        return std::to_string(whole) + size_units[unit];
    }
    auto shown = static_cast<double>(whole);
    for (; unit < largest_unit && shown >= too_long; ++unit) {
        shown /= 1024;
    }
    char text[40];
    std::snprintf(text, sizeof text, "%.1f%s", shown, size_units[unit]);
    return text;
}

// The name beside the number, as in "DDR4 (26)"; the number alone where it has no name.
std::string named(const inventory_value& value, const enumeration& names) {
    const auto number = number_in(value);
    if (!number) {
        return column_units::plain(value);
    }
    const char* name = name_of(names, *number);
    return name == nullptr ? column_units::plain(value) : name + (" (" + std::to_string(*number) + ")");
}

}  // namespace

namespace column_units {

std::string plain(const inventory_value& value) {
    const std::string* text = text_in(value);
    return text != nullptr ? printable(*text) : with_unit(value, "");
}

std::string key(const inventory_value& value) {
    return hexadecimal_text(value, 8, "0x");
}

std::string class_code(const inventory_value& value) {
    return hexadecimal_text(value, 6, "0x");
}

std::string revision(const inventory_value& value) {
    return hexadecimal_text(value, 2, "0x");
}

std::string segment(const inventory_value& value) {
    return hexadecimal_text(value, 4);
}

std::string bus(const inventory_value& value) {
    return hexadecimal_text(value, 2);
}

std::string pci_id_part(const inventory_value& value) {
    return hexadecimal_text(value, 4, "0x");
}

std::string megahertz(const inventory_value& value) {
    return with_unit(value, " MHz");
}

std::string megatransfers(const inventory_value& value) {
    return with_unit(value, " MT/s");
}

std::string bytes(const inventory_value& value) {
    return size(value, byte);
}

std::string kibibytes(const inventory_value& value) {
    return size(value, kibibyte);
}

std::string mebibytes(const inventory_value& value) {
    return size(value, mebibyte);
}

std::string processor_id(const inventory_value& value) {
    return hexadecimal_text(value, 16, "0x");
}

std::string memory_type(const inventory_value& value) {
    return named(value, enumerations::memory_type);
}

std::string form_factor(const inventory_value& value) {
    return named(value, enumerations::form_factor);
}

std::string link_speed(const inventory_value& value) {
    return named(value, enumerations::link_speed);
}

}  // namespace column_units

std::string hexadecimal_text(const inventory_value& value, int digits, const char* prefix) {
    const auto number = number_in(value);
    if (!number) {
        return column_units::none;
    }
    char text[24];
    std::snprintf(text, sizeof text, "%s%0*llx", prefix, digits, static_cast<unsigned long long>(*number));
    return text;
}
