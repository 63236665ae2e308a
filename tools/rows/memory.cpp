// SPDX-License-Identifier: Apache-2.0

#include <string>
#include <vector>

#include "cds_parser/record_columns.h"
#include "console/text_table.h"
#include "rows/column_units.h"
#include "rows/enumerations.h"
#include "rows/field_lines.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "rows/recorded_columns.h"
#include "rows/row_text.h"
#include "rows/table.h"

namespace {

constexpr const char* unless_persistent =
    "the setting is absent, or the module is not persistent: bit 12 of TypeDetail and the manufacturer Intel";

const std::vector<field_line>& memory_lines() {
    static const std::vector<field_line> lines = {
        field_lines::row_id,
        field_lines::bridge_above("ArrayId"),
        field_lines::node_index,
        {"SlotNo", "number of the slot", "", column_units::plain, nullptr, nullptr, "the setting is absent or negative",
         field_lines::no_index},
        {"TotalWidth", "width with error correction", "bit"},
        {"DataWidth", "width without error correction", "bit"},
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
        {"Capacity", "whole capacity", "B", column_units::bytes, nullptr, nullptr, unless_persistent},
        {"MemCapacity", "capacity that is used as volatile memory", "B", column_units::bytes, nullptr, nullptr,
         unless_persistent},
        {"AppDirCap", "capacity that is used as App Direct", "B", column_units::bytes, nullptr, nullptr,
         unless_persistent},
        {"UnconfigCap", "capacity that is not configured", "B", column_units::bytes, nullptr, nullptr,
         unless_persistent},
        {"InaccCap", "capacity that cannot be used", "B", column_units::bytes, nullptr, nullptr, unless_persistent},
        {"ReservedCap", "capacity that is reserved", "B", column_units::bytes, nullptr, nullptr, unless_persistent},
        {"Classification", "the firmware's number for the kind of module", "", column_units::plain, nullptr, nullptr,
         unless_persistent},
        {"FirmwareVersion", "version of the module's firmware", "", column_units::plain, nullptr, nullptr,
         unless_persistent},
        {"SoftwareID", "identifier of the module's interface", "", column_units::plain, nullptr, nullptr,
         unless_persistent},
        {"CPUIndex", "processor that the module is connected to", "", column_units::plain, nullptr, nullptr,
         unless_persistent},
        {"iMCNum", "memory controller of that processor", "", column_units::plain, nullptr, nullptr, unless_persistent},
        {"ChannelNum", "channel of that controller", "", column_units::plain, nullptr, nullptr, unless_persistent},
        {"DimmNum", "place in that channel", "", column_units::plain, nullptr, nullptr, unless_persistent},
    };
    return lines;
}

// Without its number, which is of no help in a sentence.
std::string memory_type_name(const inventory_row& row) {
    const auto number = number_in(row["MemType"]);
    const char* name = number ? name_of(enumerations::memory_type, *number) : nullptr;
    return name == nullptr ? column_units::plain(row["MemType"]) : name;
}

const std::vector<listed_column>& listed_memory() {
    static const std::vector<listed_column> columns = {
        {"Id", "Id", alignment::right},
        {"Node", "NodeIndex", alignment::right},
        {"Slot", "SlotNo", alignment::right},
        {"Locator", "DevLocator"},
        {"Bank", "BankLocator"},
        {"Size", "MemSize", alignment::right},
        {"Form factor", "FormFactor"},
        {"Type", "MemType"},
        {"Speed", "ClockSpeed", alignment::right},
        {"Manufacturer", "Manufacturer"},
        {"Part number", "PartNo"},
        {"Serial number", "SerialNo"},
        {"Asset tag", "AssetTag"},
        {"Capacity", "Capacity", alignment::right},
        {"Volatile", "MemCapacity", alignment::right},
        {"App direct", "AppDirCap", alignment::right},
        {"Firmware", "FirmwareVersion"},
        {"Array", "ArrayId", alignment::right},
    };
    return columns;
}

}  // namespace

const kind_description& kinds::describe_memory() {
    static const std::vector<cds_parser::column> recorded =
        columns_in(cds_parser::memory_columns, cds_parser::persistent_memory_columns);
    static const kind_description description = {
        "memory device",
        "Device Locator",
        {{"NodeIndex", "DevLocator", "BankLocator"}, {}},
        {{"", "DevLocator"}, {"", "BankLocator"}, {"node ", "NodeIndex"}},
        {{"", "MemSize"},
         {"", memory_type_name},
         {"", "Manufacturer"},
         {"", "PartNo"},
         {"serial number ", row_texts::serial_number}},
        listed_memory(),
        recorded,
        fields_in(cds_parser::memory_record.group, recorded, memory_lines()),
    };
    return description;
}
