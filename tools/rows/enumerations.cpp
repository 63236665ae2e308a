// SPDX-License-Identifier: Apache-2.0

#include "rows/enumerations.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

constexpr enumerated_value processor_types[] = {
    {1, "other"}, {2, "unknown"}, {3, "central processor"}, {4, "math processor"}, {5, "DSP"}, {6, "video processor"},
};

constexpr enumerated_value processor_families[] = {
    {0x01, "other"},           {0x02, "unknown"},       {0x6B, "AMD Zen"},
    {0x84, "AMD Opteron"},     {0xB3, "Intel Xeon"},    {0xC6, "Intel Core i7"},
    {0xCD, "Intel Core i5"},   {0xCE, "Intel Core i3"}, {0xD6, "Intel Xeon, multi-core"},
    {0xFE, "given elsewhere"}, {0x100, "ARMv7"},        {0x101, "ARMv8"},
};

constexpr enumerated_value voltage_parts[] = {
    {0, "with bit 7 clear: bit 0 stands for 5 V, bit 1 for 3.3 V, bit 2 for 2.9 V"},
    {7, "with bit 7 set: bits 6-0 hold tenths of a volt"},
};

constexpr enumerated_value processor_status_parts[] = {
    {0, "bits 2-0: 0 unknown, 1 enabled, 2 disabled by the user, 3 disabled by the firmware, 4 idle, 7 other"},
    {6, "bit 6: the socket is populated"},
};

constexpr enumerated_value processor_upgrades[] = {
    {0x01, "other"},          {0x02, "unknown"},          {0x06, "none"},           {0x19, "socket LGA1366"},
    {0x1A, "socket G34"},     {0x24, "socket LGA1155"},   {0x26, "socket LGA2011"}, {0x2B, "socket LGA2011-3"},
    {0x32, "socket LGA1151"}, {0x36, "socket LGA3647-1"}, {0x37, "socket SP3"},     {0x3D, "socket LGA4189"},
    {0x3F, "socket LGA4677"},
};

constexpr enumerated_value processor_characteristic_bits[] = {
    {1, "unknown"},
    {2, "64-bit capable"},
    {3, "multi-core"},
    {4, "several hardware threads a core"},
    {5, "execute protection"},
    {6, "enhanced virtualization"},
    {7, "power and performance control"},
    {8, "128-bit capable"},
    {9, "Arm64 SoC ID"},
};

constexpr enumerated_value cache_types[] = {
    {1, "other"}, {2, "unknown"}, {3, "instructions"}, {4, "data"}, {5, "unified"},
};

constexpr enumerated_value cache_configuration_parts[] = {
    {0, "bits 2-0: the level, less 1"},
    {3, "bit 3: socketed"},
    {5, "bits 6-5: 0 internal, 1 external, 3 unknown"},
    {7, "bit 7: enabled"},
    {8, "bits 9-8: 0 write through, 1 write back, 2 varies, 3 unknown"},
};

constexpr enumerated_value form_factors[] = {
    {0x01, "other"},  {0x02, "unknown"}, {0x03, "SIMM"},         {0x04, "SIP"},
    {0x05, "chip"},   {0x06, "DIP"},     {0x07, "ZIP"},          {0x08, "proprietary card"},
    {0x09, "DIMM"},   {0x0A, "TSOP"},    {0x0B, "row of chips"}, {0x0C, "RIMM"},
    {0x0D, "SODIMM"}, {0x0E, "SRIMM"},   {0x0F, "FB-DIMM"},      {0x10, "die"},
    {0x11, "CAMM"},
};

constexpr enumerated_value memory_types[] = {
    {0x01, "other"},  {0x02, "unknown"},      {0x03, "DRAM"},   {0x04, "EDRAM"},  {0x05, "VRAM"},   {0x06, "SRAM"},
    {0x07, "RAM"},    {0x08, "ROM"},          {0x09, "flash"},  {0x0A, "EEPROM"}, {0x0B, "FEPROM"}, {0x0C, "EPROM"},
    {0x0D, "CDRAM"},  {0x0E, "3DRAM"},        {0x0F, "SDRAM"},  {0x10, "SGRAM"},  {0x11, "RDRAM"},  {0x12, "DDR"},
    {0x13, "DDR2"},   {0x14, "DDR2 FB-DIMM"}, {0x18, "DDR3"},   {0x19, "FBD2"},   {0x1A, "DDR4"},   {0x1B, "LPDDR"},
    {0x1C, "LPDDR2"}, {0x1D, "LPDDR3"},       {0x1E, "LPDDR4"}, {0x1F, "NVDIMM"}, {0x20, "HBM"},    {0x21, "HBM2"},
    {0x22, "DDR5"},   {0x23, "LPDDR5"},       {0x24, "HBM3"},
};

constexpr enumerated_value type_detail_bits[] = {
    {1, "other"},       {2, "unknown"},       {3, "fast-paged"},  {4, "static column"}, {5, "pseudo-static"},
    {6, "RAMBUS"},      {7, "synchronous"},   {8, "CMOS"},        {9, "EDO"},           {10, "window DRAM"},
    {11, "cache DRAM"}, {12, "non-volatile"}, {13, "registered"}, {14, "unbuffered"},   {15, "LRDIMM"},
};

constexpr enumerated_value locations[] = {
    {0, "on the board"},
    {2, "unknown"},
};

constexpr enumerated_value slot_types[] = {
    {0x01, "other"},      {0x02, "unknown"},         {0x06, "PCI"},        {0xA5, "PCIe"},
    {0xA6, "PCIe x1"},    {0xA7, "PCIe x2"},         {0xA8, "PCIe x4"},    {0xA9, "PCIe x8"},
    {0xAA, "PCIe x16"},   {0xAB, "PCIe 2"},          {0xAC, "PCIe 2 x1"},  {0xAD, "PCIe 2 x2"},
    {0xAE, "PCIe 2 x4"},  {0xAF, "PCIe 2 x8"},       {0xB0, "PCIe 2 x16"}, {0xB1, "PCIe 3"},
    {0xB2, "PCIe 3 x1"},  {0xB3, "PCIe 3 x2"},       {0xB4, "PCIe 3 x4"},  {0xB5, "PCIe 3 x8"},
    {0xB6, "PCIe 3 x16"}, {0xB8, "PCIe 4"},          {0xB9, "PCIe 4 x1"},  {0xBA, "PCIe 4 x2"},
    {0xBB, "PCIe 4 x4"},  {0xBC, "PCIe 4 x8"},       {0xBD, "PCIe 4 x16"}, {0xBE, "PCIe 5"},
    {0xBF, "PCIe 5 x1"},  {0xC0, "PCIe 5 x2"},       {0xC1, "PCIe 5 x4"},  {0xC2, "PCIe 5 x8"},
    {0xC3, "PCIe 5 x16"}, {0xC4, "PCIe 6 or later"},
};

constexpr enumerated_value slot_widths[] = {
    {0x01, "other"},  {0x02, "unknown"}, {0x03, "8 bit"}, {0x04, "16 bit"}, {0x05, "32 bit"},
    {0x06, "64 bit"}, {0x07, "128 bit"}, {0x08, "x1"},    {0x09, "x2"},     {0x0A, "x4"},
    {0x0B, "x8"},     {0x0C, "x12"},     {0x0D, "x16"},   {0x0E, "x32"},
};

constexpr enumerated_value link_speeds[] = {
    {1, "2.5 GT/s"}, {2, "5 GT/s"}, {3, "8 GT/s"}, {4, "16 GT/s"}, {5, "32 GT/s"}, {6, "64 GT/s"},
};

constexpr enumerated_value hardware_types[] = {
    {0, "storage controller that is managed as one"},
    {3, "any other PCI function"},
};

constexpr enumerated_value function_types[] = {
    {0, "RAID"},
    {1, "Ethernet"},
    {2, "Fibre Channel"},
    {3, "InfiniBand"},
    {4, "display"},
    {5, "SCSI"},
    {6, "SAS"},
    {7, "anything else"},
    {8, "other storage"},
    {9, "other network"},
    {10, "non-volatile memory"},
    {11, "SATA"},
    {12, "fabric"},
    {13, "UFS"},
    {14, "storage switch"},
    {15, "coprocessor"},
    {16, "accelerator"},
    {17, "memory"},
    {18, "intelligent I/O"},
    {19, "encryption"},
    {20, "USB"},
    {21, "USB device"},
    {23, "multimedia"},
};

template <std::size_t Count>
constexpr enumeration whole(const char* name, const char* section, number_role role,
                            const enumerated_value (&values)[Count]) {
    return {name, section, role, values, Count, true};
}

template <std::size_t Count>
constexpr enumeration selected(const char* name, const char* section, number_role role,
                               const enumerated_value (&values)[Count]) {
    return {name, section, role, values, Count, false};
}

}  // namespace

namespace enumerations {

const enumeration processor_type = whole("processor type", "SMBIOS 7.5.1", number_role::value, processor_types);
const enumeration processor_family =
    selected("processor family", "SMBIOS 7.5.2", number_role::value, processor_families);
const enumeration voltage = whole("voltage", "SMBIOS 7.5.4", number_role::field, voltage_parts);
const enumeration processor_status =
    whole("processor status", "SMBIOS 7.5, offset 18h", number_role::field, processor_status_parts);
const enumeration processor_upgrade =
    selected("processor upgrade", "SMBIOS 7.5.5", number_role::value, processor_upgrades);
const enumeration processor_characteristics =
    whole("processor characteristics", "SMBIOS 7.5.9", number_role::bit, processor_characteristic_bits);
const enumeration cache_type = whole("cache type", "SMBIOS 7.8.4", number_role::value, cache_types);
const enumeration cache_configuration =
    whole("cache configuration", "SMBIOS 7.8, offset 05h", number_role::field, cache_configuration_parts);
const enumeration form_factor = whole("form factor", "SMBIOS 7.18.1", number_role::value, form_factors);
const enumeration memory_type = whole("memory type", "SMBIOS 7.18.2", number_role::value, memory_types);
const enumeration type_detail = whole("type detail", "SMBIOS 7.18.3", number_role::bit, type_detail_bits);
const enumeration location = selected("location", "the firmware's own", number_role::value, locations);
const enumeration slot_type = selected("slot type", "SMBIOS 7.10.1", number_role::value, slot_types);
const enumeration slot_width = whole("slot data bus width", "SMBIOS 7.10.2", number_role::value, slot_widths);
const enumeration link_speed =
    whole("link speed", "PCI Express, Link Capabilities and Link Status registers", number_role::value, link_speeds);
const enumeration hardware_type =
    whole("hardware type", "the inventory service's own", number_role::value, hardware_types);
const enumeration function_type =
    whole("function type", "the inventory service's own, by class code", number_role::value, function_types);

}  // namespace enumerations

const char* name_of(const enumeration& values, std::uint64_t number) {
    const auto* found = std::find_if(values.begin(), values.end(),
                                     [number](const enumerated_value& each) { return each.number == number; });
    return found == values.end() ? nullptr : found->name;
}
