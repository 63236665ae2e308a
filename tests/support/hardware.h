// SPDX-License-Identifier: Apache-2.0

/// Components that each leave one row, for tests in which only their place in the tree matters.
#ifndef TESTS_SUPPORT_HARDWARE_H
#define TESTS_SUPPORT_HARDWARE_H

#include <string>
#include <vector>

#include "support/tree_builder.h"

inline std::vector<setting> processor_settings() {
    return {integer("Core Count", "8")};
}

inline std::vector<setting> memory_settings() {
    return {integer("Slot Number", "1")};
}

inline std::vector<setting> bridge_settings(const std::string& bus) {
    return {integer("Bus Number", bus), integer("Device Number", "0"), integer("Function Number", "0")};
}

inline std::vector<setting> device_settings(const std::string& bus) {
    return {integer("Bus Number", bus), integer("Device Number", "0"), integer("Function Number", "0"),
            integer("Location", "1")};
}

/// The settings of "component_struct_info" that make a component the main server of that index.
inline std::vector<setting> main_server_settings(const std::string& index) {
    return {text("comp_type", "EFI_CT_MAIN_SERVER"), integer("slot_index", index)};
}

#endif
