/// What the record writers share. A record is a table of columns, each fed by one setting of the component's group.
#ifndef CDS_PARSER_RECORD_H
#define CDS_PARSER_RECORD_H

#include <cstddef>
#include <cstdint>
#include <string>

#include <zeb_db.h>

#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {

enum class column_type {
    text,    ///< the value text as it was read
    uint,    ///< the value's low 32 bits
    uint64,  ///< the whole value
};

/// A column and the setting that it takes its value from; a column whose setting is absent is not put.
struct column {
    const char* setting;
    const char* name;
    column_type type;
};

/// The value of the setting of that name, `default_value` when the group has none or it is not numeric.
long long int_of(const setting_group& group, const char* setting, long long default_value);

/// The same, cut to the signed 32-bit number that PCI values are used as.
std::int32_t int32_of(const setting_group& group, const char* setting, std::int32_t default_value);

/// The value text of the setting of that name, empty when the group has none.
std::string text_of(const setting_group& group, const char* setting);

/// Puts the low 32 bits of a signed number.
void put_int32(zeb_db_content_values_t* content, const char* column, std::int32_t value);

/// Puts a row id; -1 stands for no row.
void put_row_id(zeb_db_content_values_t* content, const char* column, std::int64_t row_id);

/// Puts each column whose setting the group has, in table order, and returns how many those were.
std::size_t put_columns(zeb_db_content_values_t* content, const setting_group& group, const column* first,
                        const column* last);

template <std::size_t Count>
std::size_t put_columns(zeb_db_content_values_t* content, const setting_group& group, const column (&columns)[Count]) {
    return put_columns(content, group, columns, columns + Count);
}

}  // namespace cds_parser

#endif
