// SPDX-License-Identifier: Apache-2.0

/// A CDS file with a few components of every kind, with most of their settings.
#ifndef TESTS_SUPPORT_SMALL_SERVER_H
#define TESTS_SUPPORT_SMALL_SERVER_H

#include <string>
#include <vector>

#include "support/cds_text.h"

inline std::vector<setting> pci_function(const std::string& bus, const std::string& device, const std::string& function,
                                         const std::vector<setting>& more = {}) {
    std::vector<setting> settings = {hex("Bus Number", bus), hex("Device Number", device),
                                     hex("Function Number", function)};
    settings.insert(settings.end(), more.begin(), more.end());
    return settings;
}

inline const std::string server_settings =
    cds_group("component_struct_info", {text("comp_type", "EFI_CT_MAIN_SERVER"), integer("slot_index", "1")});

/// A server with one of everything.
inline const std::string small_server = cds_component(
    server_settings +
    cds_slots(cds_component("cpu_info", {text("Socket Designation", "CPU 1"), text("Processor Version", "Züri 9000"),
                                         hex("Processor ID", "0x000806F8BFEBFBFF"), integer("Core Count", "16"),
                                         integer("Core Enabled", "12"), integer("Thread Count", "24"),
                                         integer("Current Speed", "2100"), integer("L3 Cache Installed Size", "25344"),
                                         text("Serial Number", "CPU-SECRET"), text("Asset Tag", "CPU-TAG")}) +
              cds_component("memory_info", {integer("Slot Number", "3"), text("Device Locator", "DIMM A1"),
                                            integer("Size in MB", "32768"), integer("Memory Type", "26"),
                                            integer("Configured Memory Clock Speed", "2666"),
                                            text("Manufacturer", "Maker"), text("Serial Number", "DIMM-SECRET")}) +
              cds_component("memory_info",
                            {text("Device Locator", "DIMM A2"), integer("Size in MB", "129408"),
                             integer("Memory Type", "99"), text("Manufacturer", "Intel"), hex("Type Detail", "0x1080"),
                             hex("Capacity", "0x1F98000000"), hex("App Direct Capacity", "0x1F80000000")}) +
              cds_component(
                  "pci_bridge_info",
                  pci_function("0", "1C", "0",
                               {hex("Vendor ID", "8086"), hex("Device ID", "A190"), hex("Revision ID", "F9"),
                                hex("Class Code", "060400"), hex("Primary Bus Number", "0"),
                                hex("Secondary Bus Number", "3A"), hex("Subordinate Bus Number", "3F")}),
                  cds_component("pci_bridge_info", pci_function("3A", "2", "1")) +
                      cds_component(
                          "pci_device_info",
                          pci_function("3B", "1F", "7",
                                       {hex("Segment Number", "1"), integer("Location", "1"),
                                        integer("Slot Number", "5"), hex("Vendor ID", "8086"), hex("Device ID", "1572"),
                                        hex("Subsystem Vendor ID", "8086"), hex("Subsystem ID", "7"),
                                        hex("Class Code", "020000"), text("Slot Designation", "Slot 5"),
                                        integer("Negotiated Link Width", "4"), integer("Maximum Link Width", "8"),
                                        integer("Current Link Speed", "3"), integer("Max Link Speed", "4")}))) +
              cds_component("pci_device_info", pci_function("0", "2", "0", {integer("Location", "1")}))));

#endif
