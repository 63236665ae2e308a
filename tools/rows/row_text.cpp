#include "rows/row_text.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <limits>

#include "console/utf8.h"

namespace {

constexpr const char* none = "-";

std::string hexadecimal(const inventory_row& row, const char* column, int digits, const char* prefix = "") {
    const auto number = row.number(column);
    if (!number) {
        return none;
    }
    char text[24];
    std::snprintf(text, sizeof text, "%s%0*llx", prefix, digits, static_cast<unsigned long long>(*number));
    return text;
}

std::string with_unit(const inventory_row& row, const char* column, const char* unit) {
    const auto number = row.number(column);
    return number ? std::to_string(*number) + unit : none;
}

// Two texts as one; none when there is neither.
std::string joined(const std::string& first, const char* separator, const std::string& second) {
    return first == none && second == none ? none : first + separator + second;
}

constexpr const char* size_units[] = {" B", " KiB", " MiB", " GiB", " TiB", " PiB"};
enum size_unit : std::size_t { byte, kibibyte, mebibyte };

// Whole as long as that takes four digits at most, as in 1536 MiB; else with one decimal, as in 126.4 GiB.
std::string size(const inventory_row& row, const char* column, std::size_t unit) {
    constexpr std::size_t largest_unit = std::size(size_units) - 1;
    constexpr std::uint64_t too_long = 10000;
    const auto number = row.number(column);
    if (!number) {
        return none;
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

std::string pci_address(const inventory_row& row, const char* device, const char* function) {
    return hexadecimal(row, "SegNo", 4) + ":" + hexadecimal(row, "BusNo", 2) + ":" + hexadecimal(row, device, 2) + "." +
           hexadecimal(row, function, 1);
}

std::string pci_id(const inventory_row& row, const char* vendor, const char* device) {
    return joined(hexadecimal(row, vendor, 4), ":", hexadecimal(row, device, 4));
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

inventory_row::inventory_row(const inventory_table& table, const std::vector<inventory_value>& values)
    : columns_(table.columns), values_(values) {}

const inventory_value* inventory_row::find(const char* column) const {
    const auto found = std::find(columns_.begin(), columns_.end(), column);
    return found == columns_.end() ? nullptr : &values_[static_cast<std::size_t>(found - columns_.begin())];
}

const std::string* inventory_row::text(const char* column) const {
    return std::get_if<std::string>(find(column));
}

std::optional<std::uint64_t> inventory_row::number(const char* column) const {
    const inventory_value* value = find(column);
    if (const auto* number = std::get_if<std::uint64_t>(value)) {
        return *number;
    }
    if (const auto* number = std::get_if<std::int64_t>(value)) {
        return static_cast<std::uint64_t>(*number);
    }
    return std::nullopt;
}

namespace row_texts {

std::string plain(const inventory_row& row, const char* column) {
    const std::string* text = row.text(column);
    return text != nullptr ? printable(*text) : with_unit(row, column, "");
}

std::string index(const inventory_row& row, const char* column) {
    constexpr auto no_index = std::numeric_limits<std::uint32_t>::max();
    constexpr auto no_row = std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t number = row.number(column).value_or(0);
    return number == no_index || number == no_row ? none : plain(row, column);
}

std::string key(const inventory_row& row, const char* column) {
    return hexadecimal(row, column, 8, "0x");
}

std::string class_code(const inventory_row& row, const char* column) {
    return hexadecimal(row, column, 6, "0x");
}

std::string revision(const inventory_row& row, const char* column) {
    return hexadecimal(row, column, 2, "0x");
}

std::string segment(const inventory_row& row, const char* column) {
    return hexadecimal(row, column, 4);
}

std::string bus(const inventory_row& row, const char* column) {
    return hexadecimal(row, column, 2);
}

std::string pci_id_part(const inventory_row& row, const char* column) {
    return hexadecimal(row, column, 4, "0x");
}

std::string megahertz(const inventory_row& row, const char* column) {
    return with_unit(row, column, " MHz");
}

std::string megatransfers(const inventory_row& row, const char* column) {
    return with_unit(row, column, " MT/s");
}

std::string bytes(const inventory_row& row, const char* column) {
    return size(row, column, byte);
}

std::string kibibytes(const inventory_row& row, const char* column) {
    return size(row, column, kibibyte);
}

std::string mebibytes(const inventory_row& row, const char* column) {
    return size(row, column, mebibyte);
}

std::string processor_id(const inventory_row& row, const char* column) {
    return hexadecimal(row, column, 16, "0x");
}

std::string cores(const inventory_row& row, const char*) {
    return joined(plain(row, "CoreEnabled"), "/", plain(row, "CoreCount"));
}

std::string memory_type(const inventory_row& row, const char* column) {
    const auto number = row.number(column);
    const auto named = std::find_if(std::begin(memory_types), std::end(memory_types),
                                    [number](const type_name& each) { return each.number == number; });
    return named == std::end(memory_types) ? plain(row, column) : named->name;
}

std::string bridge_address(const inventory_row& row, const char*) {
    return pci_address(row, "DevNo", "FunNo");
}

std::string bridge_id(const inventory_row& row, const char*) {
    return pci_id(row, "VendorId", "DevId");
}

std::string bus_range(const inventory_row& row, const char*) {
    return joined(bus(row, "SndBusNo"), "-", bus(row, "SubBusNo"));
}

std::string device_address(const inventory_row& row, const char*) {
    return pci_address(row, "DeviceNo", "FunctionNo");
}

std::string device_id(const inventory_row& row, const char*) {
    return pci_id(row, "VendorId", "DeviceId");
}

std::string subsystem_id(const inventory_row& row, const char*) {
    return pci_id(row, "SubVendorId", "SubDeviceId");
}

std::string lanes(const inventory_row& row, const char*) {
    return joined(plain(row, "LanesInUse"), "/", plain(row, "MaxLanes"));
}

std::string link_generation(const inventory_row& row, const char*) {
    return joined(plain(row, "PCIeType"), "/", plain(row, "MaxPCIeType"));
}

}  // namespace row_texts
