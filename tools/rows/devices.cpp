// SPDX-License-Identifier: Apache-2.0

#include <vector>

#include "cds_parser/record_columns.h"
#include "console/text_table.h"
#include "rows/column_units.h"
#include "rows/enumerations.h"
#include "rows/field_lines.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "rows/pci_label_columns.h"
#include "rows/recorded_columns.h"
#include "rows/row_text.h"

namespace {

const std::vector<field_line>& device_lines() {
    static const std::vector<field_line> lines = {
        field_lines::row_id,
        field_lines::bridge_above("BridgeId"),
        field_lines::node_index,
        {"DevKey", "key of the card: NodeIndex in bits 31-24, Location in 23-16, SlotNo in 15-0", "", column_units::key,
         nullptr, "these columns", ""},
        {"FunKey", "key of the function: SegNo in bits 31-24, BusNo in 23-16, DeviceNo in 15-8, FunctionNo in 7-0", "",
         column_units::key, nullptr, "these columns", ""},
        field_lines::address_part("SegNo", "PCI segment; 0 where the setting is absent", column_units::segment),
        field_lines::address_part("BusNo", "bus number", column_units::bus),
        field_lines::address_part("DeviceNo", "device number; the same as DevNo of a bridge", column_units::bus),
        field_lines::address_part("FunctionNo", "function number; the same as FunNo of a bridge", column_units::plain),
        {"SlotNo", "number of the slot; 0 for storage on the board", "", column_units::plain, nullptr, nullptr,
         "the setting is absent or -1", field_lines::no_index},
        {"Location", "where the card is; 2 where the setting is absent", "", column_units::plain,
         &enumerations::location, nullptr, ""},
        {"VendorId", "PCI vendor", "", column_units::pci_id_part, nullptr, nullptr,
         "the setting is absent or negative"},
        {"ClsCode",
         "class code: base class in bits 23-16, subclass in 15-8, interface in 7-0 (PCI Code and ID Assignment); "
         "corrected for devices that report a misleading one",
         "", column_units::class_code, nullptr, nullptr, "the setting is absent or negative"},
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
        {"HardwareId", "the same as FunKey", "", column_units::key, nullptr, "FunKey", ""},
        {"HardwareTypeId", "how the inventory service manages it", "", column_units::plain,
         &enumerations::hardware_type, "VendorId, DeviceId and ClsCode", ""},
        {"FunType", "what it is for", "", column_units::plain, &enumerations::function_type,
         "VendorId, DeviceId and ClsCode", ""},
    };
    return lines;
}

const std::vector<listed_column>& listed_devices() {
    static const std::vector<listed_column> columns = {
        {"Id", "Id", alignment::right},
        {"Node", "NodeIndex", alignment::right},
        {"Bridge", "BridgeId", alignment::right},
        {"Address", row_texts::device_address},
        {"Slot", "SlotNo", alignment::right},
        {"Designation", "SlotDesignation"},
        {"Vendor:dev", row_texts::device_id},
        {"Name", pci_label_columns::name},
        {"Subsystem", row_texts::subsystem_id},
        {"Class", "ClsCode"},
        {"Kind", pci_label_columns::kind},
        {"Lanes", row_texts::lanes, alignment::right},
        {"Link speed", row_texts::link_speed, alignment::right},
        {"Device key", "DevKey"},
        {"Function key", "FunKey"},
    };
    return columns;
}

}  // namespace

const kind_description& kinds::describe_devices() {
    static const std::vector<cds_parser::column> recorded =
        columns_in(cds_parser::device_place_columns, cds_parser::device_kind_columns, cds_parser::device_columns);
    static const kind_description description = {
        "PCI function",
        nullptr,
        {{"NodeIndex", "FunKey"}, {"FunKey"}},
        {{"", row_texts::device_address}, {"node ", "NodeIndex"}},
        {{"", row_texts::device_id}, {"class ", "ClsCode"}, {"slot ", "SlotNo"}, {"", "SlotDesignation"}},
        listed_devices(),
        recorded,
        fields_in(cds_parser::device_record.group, recorded, device_lines()),
    };
    return description;
}
