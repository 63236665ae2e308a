// SPDX-License-Identifier: Apache-2.0

/// CDS files of a server whose rows tell which one they come from.
#ifndef TESTS_SUPPORT_SERVER_OF_REVISION_H
#define TESTS_SUPPORT_SERVER_OF_REVISION_H

#include <cstddef>
#include <string>
#include <vector>

#include "support/cds_text.h"

/// A bridge with a function below it.
inline std::string card_of_revision(int bus, int revision) {
    const std::vector<setting> address = {
        integer("Bus Number", std::to_string(bus % 256)),
        integer("Segment Number", std::to_string(bus / 256)),
        integer("Device Number", "0"),
        integer("Function Number", "0"),
        integer("Revision ID", std::to_string(revision)),
    };
    std::vector<setting> function = address;
    function.push_back(integer("Location", "1"));
    function.push_back(integer("Slot Number", std::to_string(bus)));
    function.push_back(text("Slot Designation", "Slot of revision " + std::to_string(revision)));
    return cds_component(cds_group("pci_bridge_info", address) +
                         cds_slots(cds_component(cds_group("pci_device_info", function))));
}

/// A server whose rows in every table differ from those of another revision: `count` in each. Each memory row has a
/// text of `length` besides.
inline std::string server_of_revision(int count, int revision, std::size_t length = 0) {
    const std::string serial = "revision " + std::to_string(revision);
    std::string content;
    for (int i = 0; i < count; ++i) {
        content += cds_component(cds_group("cpu_info", {integer("Core Count", "8"), text("Serial Number", serial)}));
        content += cds_component(cds_group("memory_info", {integer("Size", "8192"), text("Serial Number", serial),
                                                           text("Bank Locator", std::string(length, 'x'))}));
        content += card_of_revision(i, revision);
    }
    return cds_component(cds_slots(content));
}

#endif
