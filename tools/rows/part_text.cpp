// SPDX-License-Identifier: Apache-2.0

#include "rows/part_text.h"

#include <string>
#include <vector>

#include "rows/column_units.h"
#include "rows/fields.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "rows/row_text.h"
#include "rows/shown_text.h"
#include "rows/table.h"

namespace {

std::string joined_text(const std::vector<phrase>& phrases, const inventory_row& row) {
    std::string joined;
    for (const phrase& each : phrases) {
        const std::string text = stripped(text_of(each.text, row));
        if (!text.empty()) {
            joined += (joined.empty() ? "" : ", ") + (each.before + text);
        }
    }
    return joined;
}

}  // namespace

std::string text_of(const shown_text& shown, const inventory_row& row) {
    return shown.several != nullptr ? shown.several(row) : unit_of(row.kind(), shown.column)(row[shown.column]);
}

bool is_plain(const shown_text& shown, const inventory_kind& kind) {
    return shown.column != nullptr && unit_of(kind, shown.column) == column_units::plain;
}

std::string place_text(const inventory_row& row) {
    const std::string text = joined_text(row.kind().description().place, row);
    return text.empty() ? "unnamed" : text;
}

std::string part_text(const inventory_row& row) {
    if (number_in(row["MemSize"]) == 0) {
        return "empty slot";
    }
    return joined_text(row.kind().description().part, row);
}
