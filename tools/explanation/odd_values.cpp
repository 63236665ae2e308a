// SPDX-License-Identifier: Apache-2.0

#include "explanation/odd_values.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "cds_parser/record_columns.h"
#include "console/output.h"
#include "explanation/known_settings.h"
#include "rows/kind_description.h"
#include "rows/table.h"

namespace {

using cds_parser::column;
using cds_parser::column_type;
using cds_parser::setting_node;

bool is_of_a_number(setting_node::setting_value_type type) {
    return type == setting_node::hex_value || type == setting_node::integer_value ||
           type == setting_node::decimal_value || type == setting_node::bool_value;
}

enum class reading { whole, no_number, too_large };

// How the text of a value with a number's type reads as one.
reading reading_of(const setting_node& setting) {
    const std::string& text = setting.value;
    if (setting.value_type == setting_node::bool_value) {
        return text == "true" || text == "false" || text == "1" || text == "0" ? reading::whole : reading::no_number;
    }
    char* end = nullptr;
    errno = 0;
    if (setting.value_type == setting_node::decimal_value) {
        std::strtod(text.c_str(), &end);
    } else {
        std::strtoll(text.c_str(), &end, setting.value_type == setting_node::hex_value ? 16 : 0);
    }
    if (end == text.c_str() ||
        text.find_first_not_of(" \t\r\n", static_cast<std::size_t>(end - text.c_str())) != std::string::npos) {
        return reading::no_number;
    }
    return errno == ERANGE ? reading::too_large : reading::whole;
}

bool fits(std::int64_t number, column_type type) {
    return type == column_type::uint64 ||
           (number >= std::numeric_limits<std::int32_t>::min() && number <= std::numeric_limits<std::uint32_t>::max());
}

std::uint64_t as_stored(std::int64_t number, column_type type) {
    return type == column_type::uint64 ? static_cast<std::uint64_t>(number) : static_cast<std::uint32_t>(number);
}

std::optional<oddity> oddity_of(const setting_node& setting, column_type type, const inventory_value& stored) {
    if (!is_of_a_number(setting.value_type)) {
        return oddity::text_for_number;
    }
    const reading read = reading_of(setting);
    const std::int64_t number = setting.get_int64(0);
    if (read == reading::no_number) {
        return oddity::no_number;
    }
    if (read == reading::too_large || !fits(number, type)) {
        return oddity::too_large;
    }
    const bool is_replaced = is_put(stored) && number_in(stored) != as_stored(number, type);
    return is_replaced ? std::optional(oddity::replaced) : std::nullopt;
}

}  // namespace

std::vector<odd_value> odd_values(const cds_parser::component& explained, const known_group* recorded_by,
                                  const std::optional<inventory_table>& row) {
    if (recorded_by == nullptr) {
        return {};
    }
    std::vector<odd_value> odd;
    const cds_parser::setting_group& group = *explained.get_setting_group(recorded_by->name);
    for (const column& each : recorded_by->kind->description().recorded) {
        const setting_node* setting = group.get_setting(each.setting);
        if (setting == nullptr || each.type == column_type::text) {
            continue;
        }
        const inventory_value stored = row ? inventory_row(*row, 0)[each.name] : inventory_value();
        if (row && !is_put(stored)) {
            continue;  // no column takes it
        }
        if (const auto what = oddity_of(*setting, each.type, stored)) {
            const std::string type = setting_node::map_value_type(setting->value_type);
            odd.push_back(
                {group.name, setting->name, each.name, *what, type + ' ' + in_quotes(setting->value), stored});
        }
    }
    return odd;
}
