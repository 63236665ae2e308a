// SPDX-License-Identifier: Apache-2.0

#include "rows/column_units.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <limits>
#include <map>
#include <string>

#include "console/utf8.h"
#include "rows/kinds.h"
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

struct type_name {
    std::uint64_t number;
    const char* name;
};

// How the firmware numbers the types of memory.
constexpr type_name memory_types[] = {
    {0x01, "other"},  {0x02, "unknown"}, {0x12, "DDR"},    {0x13, "DDR2"},   {0x18, "DDR3"},
    {0x1A, "DDR4"},   {0x1B, "LPDDR"},   {0x1C, "LPDDR2"}, {0x1D, "LPDDR3"}, {0x1E, "LPDDR4"},
    {0x1F, "NVDIMM"}, {0x20, "HBM"},     {0x21, "HBM2"},   {0x22, "DDR5"},   {0x23, "LPDDR5"},
};

}  // namespace

namespace column_units {

std::string plain(const inventory_value& value) {
    const std::string* text = text_in(value);
    return text != nullptr ? printable(*text) : with_unit(value, "");
}

std::string index(const inventory_value& value) {
    constexpr auto no_index = std::numeric_limits<std::uint32_t>::max();
    constexpr auto no_row = std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t number = number_in(value).value_or(0);
    return number == no_index || number == no_row ? column_units::none : plain(value);
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
    const auto number = number_in(value);
    const auto named = std::find_if(std::begin(memory_types), std::end(memory_types),
                                    [number](const type_name& each) { return each.number == number; });
    return named == std::end(memory_types) ? plain(value) : named->name;
}

}  // namespace column_units

column_unit unit_of(const inventory_kind& kind, const std::string& column) {
    using namespace column_units;
    static const std::map<const inventory_kind*, std::map<std::string, column_unit>> units = {
        {&kinds::processors,
         {{"NodeIndex", index},
          {"ProcId", processor_id},
          {"ExtClock", megahertz},
          {"MaxSpeed", megahertz},
          {"CurSpeed", megahertz},
          {"L1CacheMaxSize", kibibytes},
          {"L1CacheInstalled", kibibytes},
          {"L2CacheMaxSize", kibibytes},
          {"L2CacheInstalled", kibibytes},
          {"L3CacheMaxSize", kibibytes},
          {"L3CacheInstalled", kibibytes}}},
        {&kinds::memory,
         {{"NodeIndex", index},
          {"SlotNo", index},
          {"MemSize", mebibytes},
          {"MemType", memory_type},
          {"MaxSpeed", megatransfers},
          {"ClockSpeed", megatransfers},
          {"Capacity", bytes},
          {"MemCapacity", bytes},
          {"AppDirCap", bytes},
          {"UnconfigCap", bytes},
          {"InaccCap", bytes},
          {"ReservedCap", bytes},
          {"ArrayId", index}}},
        {&kinds::bridges,
         {{"NodeIndex", index},
          {"ParentId", index},
          {"VendorId", pci_id_part},
          {"DevId", pci_id_part},
          {"RevId", revision},
          {"ClsCode", class_code},
          {"PriBusNo", bus},
          {"SndBusNo", bus},
          {"SubBusNo", bus}}},
        {&kinds::devices,
         {{"NodeIndex", index},
          {"BridgeId", index},
          {"DevKey", key},
          {"FunKey", key},
          {"SlotNo", index},
          {"VendorId", pci_id_part},
          {"ClsCode", class_code},
          {"DeviceId", pci_id_part},
          {"RevId", revision},
          {"SubVendorId", pci_id_part},
          {"SubDeviceId", pci_id_part},
          {"HardwareId", key}}},
    };
    const auto& units_of_kind = units.at(&kind);
    const auto found = units_of_kind.find(column);
    return found == units_of_kind.end() ? plain : found->second;
}

std::string hexadecimal_text(const inventory_value& value, int digits, const char* prefix) {
    const auto number = number_in(value);
    if (!number) {
        return column_units::none;
    }
    char text[24];
    std::snprintf(text, sizeof text, "%s%0*llx", prefix, digits, static_cast<unsigned long long>(*number));
    return text;
}
