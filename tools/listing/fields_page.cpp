// SPDX-License-Identifier: Apache-2.0

#include <string>

#include "listing/fields_formats.h"
#include "rows/enumerations.h"
#include "rows/field.h"
#include "rows/fields.h"
#include "rows/kinds.h"

namespace {

constexpr const char* introduction = R"(# The columns

What `zebdb-cds show --format json`, `jsonl` and `csv`, `zebdb-cds diff --format json` and the database's own tables hold,
column by column. `zebdb-cds fields` prints the same; this page is its output with `--format markdown`.

A column has one name everywhere, that of the database. Where the names of two tables differ for the same thing, both stay:
`DevNo`, `FunNo` and `DevId` of bridges are `DeviceNo`, `FunctionNo` and `DeviceId` of devices. `zebdb-cds tree --format json`
has bridges and devices in one list and calls their columns alike: `id`, `parent_id` (ParentId, BridgeId), `node` (NodeIndex),
`segment`, `bus`, `device`, `function`, `class_code`, `vendor_id`, `device_id`, `slot`, `slot_designation`, `primary_bus`,
`secondary_bus` and `subordinate_bus`.

Numbers are whole and unsigned. What is absent is `null` in JSON and empty in CSV: a column that was never put, and, where
the last column here says so, the one stored value that stands for it.
)";

std::string cell(const std::string& text) {
    return ' ' + text + (text.empty() ? "|" : " |");
}

std::string kind_section(const inventory_kind& kind) {
    std::string text = std::string("\n## ") + kind.name + "\n\nTable `" + kind.record.table +
                       "`, from components with the group `" + kind.record.group +
                       "`.\n\n| column | meaning | unit | values | from | absent when |\n|---|---|---|---|---|---|\n";
    for (const field& each : fields_of(kind)) {
        text += "|" + cell(std::string("`") + each.column + "`") + cell(each.meaning) + cell(each.unit) +
                cell(each.values == nullptr ? "" : each.values->name) + cell(each.origin) + cell(absence_text(each)) +
                '\n';
    }
    return text;
}

std::string values_section(const enumeration& values) {
    std::string text = std::string("\n### ") + values.name + "\n\nBy " + values.section + ".\n\n";
    for (const enumerated_value& each : values) {
        text += "- ";
        if (values.role != number_role::field) {
            text += (values.role == number_role::bit ? "bit " : "") + std::to_string(each.number) + ": ";
        }
        text += std::string(each.name) + '\n';
    }
    return text + (values.is_whole ? "" : "- and others\n");
}

}  // namespace

std::string fields_page(const kind_list& kinds) {
    std::string text = introduction;
    for (const inventory_kind* kind : kinds) {
        text += kind_section(*kind);
    }
    text += "\n## What the numbers stand for\n";
    for (const enumeration* values : enumerations::all) {
        text += values_section(*values);
    }
    return text;
}
