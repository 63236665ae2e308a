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

#endif
