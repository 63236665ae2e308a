// SPDX-License-Identifier: Apache-2.0

#include <set>
#include <string>

#include "console/text_table.h"
#include "listing/fields_formats.h"
#include "rows/enumerations.h"
#include "rows/field.h"
#include "rows/fields.h"
#include "rows/kinds.h"

namespace {

std::string detail(const char* label, const std::string& text) {
    return text.empty() ? "" : std::string("    ") + label + text + '\n';
}

std::string field_text(const field& each) {
    return std::string("  ") + each.column + '\n' + detail("", each.meaning) + detail("unit    ", each.unit) +
           detail("values  ", each.values == nullptr ? "" : each.values->name) + detail("from    ", each.origin) +
           detail("absent  ", absence_text(each));
}

std::string values_text(const enumeration& values, const text_style& style) {
    std::string text = heading_text(std::string(values.name) + " (" + values.section + ")", style) + '\n';
    for (const enumerated_value& each : values) {
        text += "  ";
        if (values.role != number_role::field) {
            text += (values.role == number_role::bit ? "bit " : "") + std::to_string(each.number) + "  ";
        }
        text += std::string(each.name) + '\n';
    }
    return text + (values.is_whole ? "" : "  and others\n");
}

}  // namespace

std::string fields_text(const kind_list& kinds, const text_style& style) {
    std::string text;
    std::set<const enumeration*> used;
    for (const inventory_kind* kind : kinds) {
        text +=
            heading_text(std::string(kind->title) + ": table " + kind->record.table + ", group " + kind->record.group,
                         style) +
            '\n';
        for (const field& each : fields_of(*kind)) {
            text += field_text(each);
            used.insert(each.values);
        }
        text += '\n';
    }
    const char* separator = "";
    for (const enumeration* values : enumerations::all) {
        if (used.count(values) != 0) {
            text += separator + values_text(*values, style);
            separator = "\n";
        }
    }
    return text;
}
