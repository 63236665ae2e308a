// SPDX-License-Identifier: Apache-2.0

#include "rows/row_text.h"

#include <cstddef>
#include <string>

#include "rows/column_units.h"
#include "rows/serial_number.h"
#include "rows/table.h"

namespace {

// Two texts as one; none when there is neither.
std::string joined(const std::string& first, const char* separator, const std::string& second) {
    return first == column_units::none && second == column_units::none ? column_units::none
                                                                       : first + separator + second;
}

std::string pci_address(const inventory_row& row, const char* device, const char* function) {
    return hexadecimal_text(row["SegNo"], 4) + ":" + hexadecimal_text(row["BusNo"], 2) + ":" +
           hexadecimal_text(row[device], 2) + "." + hexadecimal_text(row[function], 1);
}

std::string pci_id(const inventory_row& row, const char* vendor, const char* device) {
    return joined(hexadecimal_text(row[vendor], 4), ":", hexadecimal_text(row[device], 4));
}

}  // namespace

namespace row_texts {

using column_units::plain;

std::string cores(const inventory_row& row) {
    return joined(plain(row["CoreEnabled"]), "/", plain(row["CoreCount"]));
}

std::string serial_number(const inventory_row& row) {
    const std::string* text = text_in(row["SerialNo"]);
    return text != nullptr && real_serial_number(*text) ? plain(*text) : "";
}

std::string bridge_address(const inventory_row& row) {
    return pci_address(row, "DevNo", "FunNo");
}

std::string bridge_id(const inventory_row& row) {
    return pci_id(row, "VendorId", "DevId");
}

std::string bus_range(const inventory_row& row) {
    return joined(column_units::bus(row["SndBusNo"]), "-", column_units::bus(row["SubBusNo"]));
}

std::string device_address(const inventory_row& row) {
    return pci_address(row, "DeviceNo", "FunctionNo");
}

std::string device_id(const inventory_row& row) {
    return pci_id(row, "VendorId", "DeviceId");
}

std::string subsystem_id(const inventory_row& row) {
    return pci_id(row, "SubVendorId", "SubDeviceId");
}

std::string lanes(const inventory_row& row) {
    return joined(plain(row["LanesInUse"]), "/", plain(row["MaxLanes"]));
}

std::string link_speed(const inventory_row& row) {
    return joined(column_units::link_speed(row["PCIeType"]), " of ", column_units::link_speed(row["MaxPCIeType"]));
}

}  // namespace row_texts

std::string stripped(const std::string& text) {
    if (text.find_first_not_of("- ") == std::string::npos) {
        return "";
    }
    const std::size_t first = text.find_first_not_of(' ');
    return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}
