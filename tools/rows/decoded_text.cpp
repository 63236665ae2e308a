// SPDX-License-Identifier: Apache-2.0

#include "rows/decoded_text.h"

#include <cstdint>
#include <string>

#include "rows/enumerations.h"
#include "rows/field.h"
#include "rows/fields.h"
#include "rows/kinds.h"
#include "rows/table.h"

namespace {

std::string names_of_bits(const enumeration& names, std::uint64_t bits) {
    std::string text;
    for (const enumerated_value& each : names) {
        if ((bits >> each.number & 1) != 0) {
            text += (text.empty() ? "" : ", ") + std::string(each.name);
        }
    }
    return text;
}

// Empty where there is no name.
std::string name_text(const enumeration& names, std::uint64_t number) {
    switch (names.role) {
        case number_role::value: {
            const char* name = name_of(names, number);
            return name == nullptr ? "" : name;
        }
        case number_role::bit:
            return names_of_bits(names, number);
        case number_role::field:
            break;
    }
    return "";
}

}  // namespace

std::string decoded_text(const inventory_kind& kind, const std::string& column, const inventory_value& value) {
    const field* known = find_field(kind, column);
    const auto number = number_in(value);
    const std::string name =
        known != nullptr && known->values != nullptr && number ? name_text(*known->values, *number) : "";
    return name.empty() ? unit_of(kind, column)(value) : name;
}
