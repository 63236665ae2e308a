// SPDX-License-Identifier: Apache-2.0

/// Short ways to write CDS files in tests.
#ifndef TESTS_SUPPORT_CDS_TEXT_H
#define TESTS_SUPPORT_CDS_TEXT_H

#include <string>
#include <vector>

#include "support/tree_builder.h"

inline std::string cds_setting(const setting& given) {
    const std::string tag = cds_parser::setting_node::map_value_type(given.type);
    return "<setting><name>" + given.name + "</name><" + tag + ">" + given.value + "</" + tag + "></setting>\n";
}

inline std::string cds_group(const std::string& name, const std::vector<setting>& settings = {}) {
    std::string text = "<setting_group><name>" + name + "</name>\n";
    for (const setting& given : settings) {
        text += cds_setting(given);
    }
    return text + "</setting_group>\n";
}

inline std::string cds_slots(const std::string& content) {
    return "<child_slot_group>\n" + content + "</child_slot_group>\n";
}

/// A component; as the outermost element it is a whole file.
inline std::string cds_component(const std::string& content) {
    return "<component>\n" + content + "</component>\n";
}

/// A component with one group and, in slots, others below it.
inline std::string cds_component(const std::string& group, const std::vector<setting>& settings,
                                 const std::string& children = "") {
    return cds_component(cds_group(group, settings) + (children.empty() ? "" : cds_slots(children)));
}

/// A whole file with these components below its root.
inline std::string cds_file(const std::string& components) {
    return cds_component(cds_slots(components));
}

/// `count` PCI functions, each with a slot designation of that length.
inline std::string cds_functions(int count, std::size_t designation_length) {
    std::string functions;
    for (int i = 0; i < count; ++i) {
        functions += cds_component(
            "pci_device_info",
            {integer("Bus Number", std::to_string(i / 256)), integer("Device Number", std::to_string(i / 8 % 32)),
             integer("Function Number", std::to_string(i % 8)), integer("Location", "1"),
             text("Slot Designation", std::string(designation_length, 'x'))});
    }
    return functions;
}

#endif
