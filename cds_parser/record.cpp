// SPDX-License-Identifier: Apache-2.0

#include "record.h"

#include <cstddef>
#include <cstdint>

#include <zeb_db.h>

#include "record_columns.h"
#include "zebdb_cds_parser/setting_group.h"
#include "zebdb_cds_parser/setting_node.h"

namespace cds_parser {
namespace {

void put_column(zeb_db_content_values_t* content, const column& target, const setting_node& setting) {
    switch (target.type) {
        case column_type::text:
            zeb_db_content_put_text(content, target.name, setting.value.c_str());
            break;
        case column_type::uint:
            zeb_db_content_put_uint(content, target.name, static_cast<std::uint32_t>(setting.get_int64(0)));
            break;
        case column_type::uint64:
            zeb_db_content_put_uint64(content, target.name, static_cast<std::uint64_t>(setting.get_int64(0)));
            break;
    }
}

}  // namespace

long long int_of(const setting_group& group, const char* setting, long long default_value) {
    const setting_node* found = group.get_setting(setting);
    return found == nullptr ? default_value : found->get_int64(default_value);
}

std::int32_t int32_of(const setting_group& group, const char* setting, std::int32_t default_value) {
    return static_cast<std::int32_t>(int_of(group, setting, default_value));
}

std::string text_of(const setting_group& group, const char* setting) {
    const setting_node* found = group.get_setting(setting);
    return found == nullptr ? std::string() : found->value;
}

bool is_text(const setting_group& group, const char* setting, const char* text) {
    const setting_node* found = group.get_setting(setting);
    return found != nullptr && found->value == text;
}

void put_int32(zeb_db_content_values_t* content, const char* column, std::int32_t value) {
    zeb_db_content_put_uint(content, column, static_cast<std::uint32_t>(value));
}

void put_row_id(zeb_db_content_values_t* content, const char* column, std::int64_t row_id) {
    zeb_db_content_put_uint64(content, column, static_cast<std::uint64_t>(row_id));
}

std::size_t put_found(zeb_db_content_values_t* content, const column* columns, const setting_node* const* found,
                      std::size_t count) {
    std::size_t put = 0;
    for (std::size_t place = 0; place < count; ++place) {
        if (found[place] != nullptr) {
            put_column(content, columns[place], *found[place]);
            ++put;
        }
    }
    return put;
}

}  // namespace cds_parser
