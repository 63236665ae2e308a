// SPDX-License-Identifier: Apache-2.0

#include "rows/fields.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cds_parser/record_columns.h"
#include "rows/column_units.h"
#include "rows/enumerations.h"
#include "rows/kinds.h"
#include "rows/recorded_columns.h"
#include "rows/table.h"

namespace {

using absent_value = std::optional<std::int64_t>;

constexpr absent_value no_value = std::nullopt;
constexpr absent_value no_index = std::numeric_limits<std::uint32_t>::max();  // -1 in 32 bits
constexpr absent_value no_row = -1;

// A field as far as the loader's own tables do not tell it.
struct field_line {
    const char* column;
    const char* meaning;
    const char* unit = "";
    column_unit text = column_units::plain;
    const enumeration* values = nullptr;
    const char* origin = nullptr;  // null for a setting
    const char* absent = nullptr;  // null for when that is absent
    absent_value stands_for_absent = no_value;
};

constexpr field_line processors_lines[] = {
    {"Id", "row id", "", column_units::plain, nullptr, "the database", "", no_value},
    {"NodeIndex", "index of the server in its enclosure", "", column_units::plain, nullptr,
     "'slot_index' of the last component before it whose 'comp_type' is EFI_CT_MAIN_SERVER",
     "no main server stands before it", no_index},
    {"Socket", "name of the socket"},
    {"ProcType", "type of the processor", "", column_units::plain, &enumerations::processor_type},
    {"Family", "family of the processor", "", column_units::plain, &enumerations::processor_family},
    {"Manufacturer", "who made it"},
    {"ProcId", "what CPUID gives: signature in the low, features in the high 32 bits", "", column_units::processor_id},
    {"Version", "model name"},
    {"Voltage", "voltage", "", column_units::plain, &enumerations::voltage},
    {"ExtClock", "external clock", "MHz", column_units::megahertz},
    {"MaxSpeed", "highest speed that the socket supports", "MHz", column_units::megahertz},
    {"CurSpeed", "speed at the start of the server", "MHz", column_units::megahertz},
    {"Status", "status of processor and socket", "", column_units::plain, &enumerations::processor_status},
    {"Upgrade", "kind of socket", "", column_units::plain, &enumerations::processor_upgrade},
    {"SerialNo", "serial number"},
    {"AssetTag", "asset tag"},
    {"PartNo", "part number"},
    {"CoreCount", "cores"},
    {"CoreEnabled", "cores that are enabled"},
    {"ThreadCount", "threads"},
    {"Characteristics", "characteristics", "", column_units::plain, &enumerations::processor_characteristics},
    {"L1CacheMaxSize", "largest size of the level 1 cache", "KiB", column_units::kibibytes},
    {"L1CacheInstalled", "size of the level 1 cache", "KiB", column_units::kibibytes},
    {"L1CacheType", "type of the level 1 cache", "", column_units::plain, &enumerations::cache_type},
    {"L1CacheConfig", "configuration of the level 1 cache", "", column_units::plain,
     &enumerations::cache_configuration},
    {"L2CacheMaxSize", "largest size of the level 2 cache", "KiB", column_units::kibibytes},
    {"L2CacheInstalled", "size of the level 2 cache", "KiB", column_units::kibibytes},
    {"L2CacheType", "type of the level 2 cache", "", column_units::plain, &enumerations::cache_type},
    {"L2CacheConfig", "configuration of the level 2 cache", "", column_units::plain,
     &enumerations::cache_configuration},
    {"L3CacheMaxSize", "largest size of the level 3 cache", "KiB", column_units::kibibytes},
    {"L3CacheInstalled", "size of the level 3 cache", "KiB", column_units::kibibytes},
    {"L3CacheType", "type of the level 3 cache", "", column_units::plain, &enumerations::cache_type},
    {"L3CacheConfig", "configuration of the level 3 cache", "", column_units::plain,
     &enumerations::cache_configuration},
};

constexpr field_line memory_lines[] = {
    {"Id", "row id", "", column_units::plain, nullptr, "the database", "", no_value},
    {"ArrayId", "row id of the bridge that it is behind; in diff the address of that bridge", "", column_units::plain,
     nullptr, "the nearest bridge above it that has a row", "it is behind no such bridge", no_row},
    {"NodeIndex", "index of the server in its enclosure", "", column_units::plain, nullptr,
     "'slot_index' of the last component before it whose 'comp_type' is EFI_CT_MAIN_SERVER",
     "no main server stands before it", no_index},
    {"SlotNo", "number of the slot", "", column_units::plain, nullptr, nullptr, "the setting is absent or negative",
     no_index},
    {"TotalWidth", "width with error correction", "bit", column_units::plain},
    {"DataWidth", "width without error correction", "bit", column_units::plain},
    {"MemSize", "size; 0 is an empty slot", "MiB", column_units::mebibytes},
    {"FormFactor", "form factor", "", column_units::form_factor, &enumerations::form_factor},
    {"DevLocator", "name of the slot"},
    {"BankLocator", "name of the bank"},
    {"MemType", "type of memory", "", column_units::memory_type, &enumerations::memory_type},
    {"TypeDetail", "further detail of the type", "", column_units::plain, &enumerations::type_detail},
    {"MaxSpeed", "highest speed", "MT/s", column_units::megatransfers},
    {"ClockSpeed", "speed that is configured", "MT/s", column_units::megatransfers},
    {"Manufacturer", "who made it"},
    {"SerialNo", "serial number"},
    {"AssetTag", "asset tag"},
    {"PartNo", "part number"},
    {"Attributes", "rank in bits 3-0, 0 for unknown"},
    {"Capacity", "whole capacity", "B", column_units::bytes, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"MemCapacity", "capacity that is used as volatile memory", "B", column_units::bytes, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"AppDirCap", "capacity that is used as App Direct", "B", column_units::bytes, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"UnconfigCap", "capacity that is not configured", "B", column_units::bytes, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"InaccCap", "capacity that cannot be used", "B", column_units::bytes, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"ReservedCap", "capacity that is reserved", "B", column_units::bytes, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"Classification", "the firmware's number for the kind of module", "", column_units::plain, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"FirmwareVersion", "version of the module's firmware", "", column_units::plain, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"SoftwareID", "identifier of the module's interface", "", column_units::plain, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"CPUIndex", "processor that the module is connected to", "", column_units::plain, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"iMCNum", "memory controller of that processor", "", column_units::plain, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"ChannelNum", "channel of that controller", "", column_units::plain, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
    {"DimmNum", "place in that channel", "", column_units::plain, nullptr, nullptr,
     "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel",
     no_value},
};

constexpr field_line bridges_lines[] = {
    {"Id", "row id", "", column_units::plain, nullptr, "the database", "", no_value},
    {"ParentId", "row id of the bridge that it is behind; in diff the address of that bridge", "", column_units::plain,
     nullptr, "the nearest bridge above it that has a row", "it is behind no such bridge", no_row},
    {"NodeIndex", "index of the server in its enclosure", "", column_units::plain, nullptr,
     "'slot_index' of the last component before it whose 'comp_type' is EFI_CT_MAIN_SERVER",
     "no main server stands before it", no_index},
    {"SegNo", "PCI segment; 0 where the setting is absent", "", column_units::segment, nullptr, nullptr, "", no_value},
    {"BusNo", "bus number", "", column_units::bus, nullptr, nullptr, "", no_value},
    {"DevNo", "device number; the same as DeviceNo of a device", "", column_units::bus, nullptr, nullptr, "", no_value},
    {"FunNo", "function number; the same as FunctionNo of a device", "", column_units::plain, nullptr, nullptr, "",
     no_value},
    {"VendorId", "PCI vendor", "", column_units::pci_id_part},
    {"DevId", "PCI device id; the same as DeviceId of a device", "", column_units::pci_id_part},
    {"RevId", "revision", "", column_units::revision},
    {"ClsCode", "class code: base class in bits 23-16, subclass in 15-8, interface in 7-0 (PCI Code and ID Assignment)",
     "", column_units::class_code},
    {"PriBusNo", "bus that it stands on", "", column_units::bus},
    {"SndBusNo", "first bus behind it", "", column_units::bus},
    {"SubBusNo", "last bus behind it", "", column_units::bus},
};

constexpr field_line devices_lines[] = {
    {"Id", "row id", "", column_units::plain, nullptr, "the database", "", no_value},
    {"BridgeId", "row id of the bridge that it is behind; in diff the address of that bridge", "", column_units::plain,
     nullptr, "the nearest bridge above it that has a row", "it is behind no such bridge", no_row},
    {"NodeIndex", "index of the server in its enclosure", "", column_units::plain, nullptr,
     "'slot_index' of the last component before it whose 'comp_type' is EFI_CT_MAIN_SERVER",
     "no main server stands before it", no_index},
    {"DevKey", "key of the card: NodeIndex in bits 31-24, Location in 23-16, SlotNo in 15-0", "", column_units::key,
     nullptr, "these columns", "", no_value},
    {"FunKey", "key of the function: SegNo in bits 31-24, BusNo in 23-16, DeviceNo in 15-8, FunctionNo in 7-0", "",
     column_units::key, nullptr, "these columns", "", no_value},
    {"SegNo", "PCI segment; 0 where the setting is absent", "", column_units::segment, nullptr, nullptr, "", no_value},
    {"BusNo", "bus number", "", column_units::bus, nullptr, nullptr, "", no_value},
    {"DeviceNo", "device number; the same as DevNo of a bridge", "", column_units::bus, nullptr, nullptr, "", no_value},
    {"FunctionNo", "function number; the same as FunNo of a bridge", "", column_units::plain, nullptr, nullptr, "",
     no_value},
    {"SlotNo", "number of the slot; 0 for storage on the board", "", column_units::plain, nullptr, nullptr,
     "the setting is absent or -1", no_index},
    {"Location", "where the card is; 2 where the setting is absent", "", column_units::plain, &enumerations::location,
     nullptr, "", no_value},
    {"VendorId", "PCI vendor", "", column_units::pci_id_part, nullptr, nullptr, "the setting is absent or negative",
     no_value},
    {"ClsCode",
     "class code: base class in bits 23-16, subclass in 15-8, interface in 7-0 (PCI Code and ID Assignment); corrected "
     "for devices that report a misleading one",
     "", column_units::class_code, nullptr, nullptr, "the setting is absent or negative", no_value},
    {"DeviceId", "PCI device id; the same as DevId of a bridge", "", column_units::pci_id_part},
    {"RevId", "revision", "", column_units::revision},
    {"SubVendorId", "PCI vendor of the card", "", column_units::pci_id_part},
    {"SubDeviceId", "PCI device id of the card", "", column_units::pci_id_part},
    {"SlotDesignation", "name of the slot"},
    {"SlotType", "type of the slot", "", column_units::plain, &enumerations::slot_type},
    {"SlotDataBusWidth", "width of the slot", "", column_units::plain, &enumerations::slot_width},
    {"Hotplug", "whether it can be plugged while the server runs, the firmware's number"},
    {"PCIType", "the firmware's number for the kind of PCI"},
    {"BladeSlotPort", "port of the blade's slot"},
    {"LanesInUse", "lanes that are in use"},
    {"MaxLanes", "lanes that it has"},
    {"MaxPCIeType", "highest link speed", "", column_units::link_speed, &enumerations::link_speed},
    {"PCIeType", "link speed", "", column_units::link_speed, &enumerations::link_speed},
    {"HardwareId", "the same as FunKey", "", column_units::key, nullptr, "FunKey", "", no_value},
    {"HardwareTypeId", "how the inventory service manages it", "", column_units::plain, &enumerations::hardware_type,
     "VendorId, DeviceId and ClsCode", "", no_value},
    {"FunType", "what it is for", "", column_units::plain, &enumerations::function_type,
     "VendorId, DeviceId and ClsCode", "", no_value},
};

const char* setting_of(const inventory_kind& kind, const std::string& column) {
    const std::vector<cds_parser::column>& recorded = recorded_columns(kind);
    const auto found = std::find_if(recorded.begin(), recorded.end(),
                                    [&column](const cds_parser::column& each) { return each.name == column; });
    return found == recorded.end() ? nullptr : found->setting;
}

std::string origin_of(const inventory_kind& kind, const field_line& line) {
    if (line.origin != nullptr) {
        return line.origin;
    }
    return std::string("'") + setting_of(kind, line.column) + "' in " + kind.record.group;
}

bool stands_for_absent(const field& described, const inventory_value& value) {
    return described.absent_value && number_in(value) == static_cast<std::uint64_t>(*described.absent_value);
}

template <std::size_t Count>
std::vector<field> fields_in(const inventory_kind& kind, const field_line (&lines)[Count]) {
    std::vector<field> fields;
    for (const field_line& line : lines) {
        fields.push_back({line.column, line.meaning, line.unit, line.text, line.values, origin_of(kind, line),
                          line.absent == nullptr ? "the setting is absent" : line.absent, line.stands_for_absent});
    }
    return fields;
}

}  // namespace

const std::vector<field>& fields_of(const inventory_kind& kind) {
    static const std::map<const inventory_kind*, std::vector<field>> fields = {
        {&kinds::processors, fields_in(kinds::processors, processors_lines)},
        {&kinds::memory, fields_in(kinds::memory, memory_lines)},
        {&kinds::bridges, fields_in(kinds::bridges, bridges_lines)},
        {&kinds::devices, fields_in(kinds::devices, devices_lines)},
    };
    return fields.at(&kind);
}

std::string absence_text(const field& described) {
    return described.absent_value ? described.absent + "; stored as " + std::to_string(*described.absent_value)
                                  : described.absent;
}

const field* find_field(const inventory_kind& kind, const std::string& column) {
    const std::vector<field>& fields = fields_of(kind);
    const auto found =
        std::find_if(fields.begin(), fields.end(), [&column](const field& each) { return each.column == column; });
    return found == fields.end() ? nullptr : &*found;
}

bool is_absent(const inventory_kind& kind, const std::string& column, const inventory_value& value) {
    if (!is_put(value)) {
        return true;
    }
    const field* known = find_field(kind, column);
    return known != nullptr && stands_for_absent(*known, value);
}

void forget_absent_values(inventory_table& table) {
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        const field* known = find_field(*table.kind, table.columns[column]);
        if (known == nullptr || !known->absent_value) {
            continue;
        }
        for (std::vector<inventory_value>& row : table.rows) {
            if (stands_for_absent(*known, row[column])) {
                row[column] = {};
            }
        }
    }
}

column_unit unit_of(const inventory_kind& kind, const std::string& column) {
    const field* known = find_field(kind, column);
    return known == nullptr ? column_units::plain : known->text;
}
