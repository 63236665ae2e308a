// SPDX-License-Identifier: Apache-2.0

#ifndef CDS_PARSER_VALUE_TAGS_H
#define CDS_PARSER_VALUE_TAGS_H

namespace cds_parser {

/// The names of the value elements, in the order of their types' numbers.
inline constexpr const char* value_tags[] = {
    "text_value", "hex_value",  "integer_value", "decimal_value", "bool_value",
    "date_value", "time_value", "guid_value",    "unknow_value",
};

}  // namespace cds_parser

#endif
