// SPDX-License-Identifier: Apache-2.0

#include "explanation/unused_settings.h"

#include <optional>
#include <vector>

#include <zebdb_cds_parser.h>

#include "explanation/known_settings.h"
#include "rows/kinds.h"
#include "rows/table.h"

namespace {

using cds_parser::setting_group;

// Whether a setting of `group` gets into the row, or would get into one.
bool is_used(const known_setting& setting, const setting_group& group, const setting_group* recorded,
             const std::optional<inventory_table>& row) {
    return &group == recorded && (!row || is_put(inventory_row(*row, 0)[setting.column]));
}

// Of a setting that the loader knows.
idleness why_unused(const setting_group& group, const setting_group* recorded, const known_group& known) {
    if (recorded == nullptr || group.name != recorded->name) {
        return idleness::other_record;
    }
    if (&group != recorded) {
        return idleness::second_group;
    }
    return known.kind == &kinds::memory ? idleness::not_persistent : idleness::no_number;
}

}  // namespace

std::vector<unused_setting> unused_settings(const cds_parser::component& explained, const known_group* recorded_by,
                                            const std::optional<inventory_table>& row) {
    const setting_group* recorded = recorded_by == nullptr ? nullptr : explained.get_setting_group(recorded_by->name);
    std::vector<unused_setting> unused;
    for (const auto& [name, group] : explained.setting_groups) {
        const known_group* known = find_known_group(name);
        if (known == nullptr) {
            continue;
        }
        for (const auto& [setting, node] : group->settings) {
            const known_setting* found = find_known_setting(*known, setting);
            if (found == nullptr) {
                unused.push_back({name, setting, idleness::unknown, similar_setting(*known, *group, setting)});
            } else if (!is_used(*found, *group, recorded, row)) {
                unused.push_back({name, setting, why_unused(*group, recorded, *known), nullptr});
            }
        }
    }
    return unused;
}
