// SPDX-License-Identifier: Apache-2.0

#include "rows/fields.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "rows/column_units.h"
#include "rows/field.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "rows/table.h"

namespace {

bool stands_for_absent(const field& described, const inventory_value& value) {
    return described.absent_value && number_in(value) == static_cast<std::uint64_t>(*described.absent_value);
}

}  // namespace

const std::vector<field>& fields_of(const inventory_kind& kind) {
    return kind.description().fields;
}

std::string absence_text(const field& described) {
    return described.absent_value ? described.absent + "; stored as " + std::to_string(*described.absent_value)
                                  : described.absent;
}

const field* find_field(const inventory_kind& kind, const std::string& column) {
    const std::vector<field>& fields = fields_of(kind);
    const auto found =
        std::find_if(fields.begin(), fields.end(), [&column](const field& each) { return each.column == column; });
    return found == fields.end() ? nullptr : &*found;
}

bool is_absent(const inventory_kind& kind, const std::string& column, const inventory_value& value) {
    if (!is_put(value)) {
        return true;
    }
    const field* known = find_field(kind, column);
    return known != nullptr && stands_for_absent(*known, value);
}

void forget_absent_values(inventory_table& table) {
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        const field* known = find_field(*table.kind, table.columns[column]);
        if (known == nullptr || !known->absent_value) {
            continue;
        }
        for (std::vector<inventory_value>& row : table.rows) {
            if (stands_for_absent(*known, row[column])) {
                row[column] = {};
            }
        }
    }
}

column_unit unit_of(const inventory_kind& kind, const std::string& column) {
    const field* known = find_field(kind, column);
    return known == nullptr ? column_units::plain : known->text;
}
