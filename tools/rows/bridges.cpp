// SPDX-License-Identifier: Apache-2.0

#include <vector>

#include "cds_parser/record_columns.h"
#include "console/text_table.h"
#include "rows/column_units.h"
#include "rows/field_lines.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "rows/pci_label_columns.h"
#include "rows/recorded_columns.h"
#include "rows/row_text.h"

namespace {

const std::vector<field_line>& bridge_lines() {
    static const std::vector<field_line> lines = {
        field_lines::row_id,
        field_lines::bridge_above("ParentId"),
        field_lines::node_index,
        field_lines::address_part("SegNo", "PCI segment; 0 where the setting is absent", column_units::segment),
        field_lines::address_part("BusNo", "bus number", column_units::bus),
        field_lines::address_part("DevNo", "device number; the same as DeviceNo of a device", column_units::bus),
        field_lines::address_part("FunNo", "function number; the same as FunctionNo of a device", column_units::plain),
        {"VendorId", "PCI vendor", "", column_units::pci_id_part},
        {"DevId", "PCI device id; the same as DeviceId of a device", "", column_units::pci_id_part},
        {"RevId", "revision", "", column_units::revision},
        {"ClsCode",
         "class code: base class in bits 23-16, subclass in 15-8, interface in 7-0 (PCI Code and ID Assignment)", "",
         column_units::class_code},
        {"PriBusNo", "bus that it stands on", "", column_units::bus},
        {"SndBusNo", "first bus behind it", "", column_units::bus},
        {"SubBusNo", "last bus behind it", "", column_units::bus},
    };
    return lines;
}

const std::vector<listed_column>& listed_bridges() {
    static const std::vector<listed_column> columns = {
        {"Id", "Id", alignment::right},
        {"Node", "NodeIndex", alignment::right},
        {"Parent", "ParentId", alignment::right},
        {"Address", row_texts::bridge_address},
        {"Vendor:dev", row_texts::bridge_id},
        {"Name", pci_label_columns::name},
        {"Revision", "RevId"},
        {"Class", "ClsCode"},
        {"Kind", pci_label_columns::kind},
        {"Primary bus", "PriBusNo"},
        {"Bus range", row_texts::bus_range},
    };
    return columns;
}

}  // namespace

const kind_description& kinds::describe_bridges() {
    static const std::vector<cds_parser::column> recorded =
        columns_in(cds_parser::bridge_address_columns, cds_parser::bridge_columns);
    static const kind_description description = {
        "PCI bridge",
        nullptr,
        {{"NodeIndex", "SegNo", "BusNo", "DevNo", "FunNo"}, {"SegNo", "BusNo", "DevNo", "FunNo"}},
        {{"", row_texts::bridge_address}, {"node ", "NodeIndex"}},
        {{"", row_texts::bridge_id}, {"class ", "ClsCode"}, {"to bus ", row_texts::bus_range}},
        listed_bridges(),
        recorded,
        fields_in(cds_parser::bridge_record.group, recorded, bridge_lines()),
    };
    return description;
}
