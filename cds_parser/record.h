// SPDX-License-Identifier: Apache-2.0

/// What the record writers share.
#ifndef CDS_PARSER_RECORD_H
#define CDS_PARSER_RECORD_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include <zeb_db.h>

#include "record_columns.h"
#include "zebdb_cds_parser/setting_group.h"
#include "zebdb_cds_parser/setting_node.h"

namespace cds_parser {

/// The value of the setting of that name, `default_value` when the group has none or it is not numeric.
long long int_of(const setting_group& group, const char* setting, long long default_value);

/// The same, cut to the signed 32-bit number that PCI values are used as.
std::int32_t int32_of(const setting_group& group, const char* setting, std::int32_t default_value);

/// The value text of the setting of that name, empty when the group has none.
std::string text_of(const setting_group& group, const char* setting);

/// Whether the setting of that name has that value text.
bool is_text(const setting_group& group, const char* setting, const char* text);

/// Puts the low 32 bits of a signed number.
void put_int32(zeb_db_content_values_t* content, const char* column, std::int32_t value);

/// Puts a row id; -1 stands for no row.
void put_row_id(zeb_db_content_values_t* content, const char* column, std::int64_t row_id);

/// The places of a table's columns in the order of their settings' names.
template <const auto& columns>
constexpr auto places_by_setting() {
    std::array<unsigned char, std::size(columns)> places{};
    for (std::size_t place = 0; place < places.size(); ++place) {
        const std::string_view name = columns[place].setting;
        std::size_t behind = place;
        for (; behind > 0 && name < columns[places[behind - 1]].setting; --behind) {
            places[behind] = places[behind - 1];
        }
        places[behind] = static_cast<unsigned char>(place);
    }
    return places;
}

/// What `sought.compare(name)` tells, for most names by their first letter. `sought` is not empty.
inline int compare_names(std::string_view sought, const std::string& name) {
    const int order = static_cast<unsigned char>(sought[0]) - static_cast<unsigned char>(name[0]);
    return order != 0 ? order : sought.compare(name);
}

/// Finds the setting of each column in one pass, since a group has its settings in the order of their names; `places`
/// are those of the columns in that order. Leaves `found` as it is where the group has none.
template <class Column>
void find_settings(const setting_group& group, const Column* columns, const unsigned char* places, std::size_t count,
                   const setting_node** found) {
    auto setting = group.settings.begin();
    const auto end = group.settings.end();
    for (std::size_t i = 0; i < count && setting != end; ++i) {
        const std::string_view name = columns[places[i]].setting;
        int order = -1;
        while (setting != end && (order = compare_names(name, setting->first)) > 0) {
            ++setting;
        }
        if (order == 0) {
            found[places[i]] = setting->second;
        }
    }
}

/// Puts each column whose setting was found, not null, and returns how many those were.
std::size_t put_found(zeb_db_content_values_t* content, const column* columns, const setting_node* const* found,
                      std::size_t count);

/// Puts each column whose setting the group has, in table order, and returns how many those were.
template <const auto& columns>
std::size_t put_columns(zeb_db_content_values_t* content, const setting_group& group) {
    static constexpr auto places = places_by_setting<columns>();
    const setting_node* found[places.size()] = {};
    find_settings(group, columns, places.data(), places.size(), found);
    return put_found(content, columns, found, places.size());
}

/// Reads the member of each column.
template <const auto& columns, class Record>
void read_columns(Record& record, const setting_group& group) {
    static constexpr auto places = places_by_setting<columns>();
    const setting_node* found[places.size()] = {};
    find_settings(group, std::data(columns), places.data(), places.size(), found);
    for (std::size_t place = 0; place < places.size(); ++place) {
        const auto& each = columns[place];
        record.*each.member = static_cast<std::int32_t>(
            found[place] == nullptr ? each.default_value : found[place]->get_int64(each.default_value));
    }
}

/// Puts each column, whether the group had its setting or not.
template <class Record, std::size_t Count>
void put_columns(zeb_db_content_values_t* content, const Record& record,
                 const number_column<Record> (&columns)[Count]) {
    for (const number_column<Record>& each : columns) {
        put_int32(content, each.name, record.*each.member);
    }
}

}  // namespace cds_parser

#endif
