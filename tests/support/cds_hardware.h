// SPDX-License-Identifier: Apache-2.0

/// Components of a CDS file that each leave a row.
#ifndef TESTS_SUPPORT_CDS_HARDWARE_H
#define TESTS_SUPPORT_CDS_HARDWARE_H

#include <string>
#include <vector>

#include "support/cds_text.h"

inline std::vector<setting> joined(std::vector<setting> settings, const std::vector<setting>& more) {
    settings.insert(settings.end(), more.begin(), more.end());
    return settings;
}

inline std::string processor(const std::string& socket, const std::vector<setting>& more = {}) {
    return cds_component("cpu_info", joined({text("Socket Designation", socket)}, more));
}

/// A memory module; without a serial number where that is empty.
inline std::string module(const std::string& locator, const std::string& serial,
                          const std::vector<setting>& more = {}) {
    std::vector<setting> settings = {text("Device Locator", locator)};
    if (!serial.empty()) {
        settings.push_back(text("Serial Number", serial));
    }
    return cds_component("memory_info", joined(settings, more));
}

inline std::vector<setting> address(const std::string& bus) {
    return {hex("Bus Number", bus), integer("Device Number", "0"), integer("Function Number", "0")};
}

inline std::string bridge(const std::string& bus, const std::vector<setting>& more = {},
                          const std::string& children = "") {
    return cds_component("pci_bridge_info", joined(address(bus), more), children);
}

inline std::string function(const std::string& bus, const std::vector<setting>& more = {}) {
    return cds_component("pci_device_info", joined(joined(address(bus), {integer("Location", "1")}), more));
}

/// A server of that node index.
inline std::string server(const std::string& components, const std::string& index = "1") {
    return cds_component("component_struct_info",
                         {text("comp_type", "EFI_CT_MAIN_SERVER"), integer("slot_index", index)}, components);
}

#endif
