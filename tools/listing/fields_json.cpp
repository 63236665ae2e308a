// SPDX-License-Identifier: Apache-2.0

#include <string>

#include "listing/fields_formats.h"
#include "rows/enumerations.h"
#include "rows/field.h"
#include "rows/fields.h"
#include "rows/kinds.h"
#include "rows/value_json.h"

using json = nlohmann::ordered_json;

namespace {

constexpr const char* role_names[] = {"value", "bit", "field"};  // in the order of the roles

json values_json(const enumeration& values) {
    json names = json::array();
    for (const enumerated_value& each : values) {
        names.push_back({{"number", each.number}, {"name", each.name}});
    }
    return {{"name", values.name},
            {"section", values.section},
            {"role", role_names[static_cast<int>(values.role)]},
            {"whole", values.is_whole},
            {"names", names}};
}

json field_json(const field& each) {
    return {{"column", each.column},
            {"meaning", each.meaning},
            {"unit", *each.unit == '\0' ? json() : json(each.unit)},
            {"values", each.values == nullptr ? json() : values_json(*each.values)},
            {"from", each.origin},
            {"absent", each.absent.empty() ? json() : json(each.absent)},
            {"absent_value", each.absent_value ? json(*each.absent_value) : json()}};
}

}  // namespace

std::string fields_json(const kind_list& kinds) {
    json document = {{"schema", json_schema}};
    for (const inventory_kind* kind : kinds) {
        json& fields = document[kind->name] = json::array();
        for (const field& each : fields_of(*kind)) {
            fields.push_back(field_json(each));
        }
    }
    return json_text(document);
}
