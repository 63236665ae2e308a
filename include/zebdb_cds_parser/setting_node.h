// SPDX-License-Identifier: Apache-2.0

#ifndef ZEBDB_CDS_PARSER_SETTING_NODE_H
#define ZEBDB_CDS_PARSER_SETTING_NODE_H

#include <string>

#include "zebdb_cds_parser/element.h"

namespace sysxml {
class node;
}

namespace cds_parser {

/// One named value, a `setting` element of the file.
class ZEBDB_CDS_PARSER_EXPORT setting_node : public element {
public:
    /// Which value element supplied the value; the names are the elements' own.
    enum setting_value_type : std::uint32_t {
        text_value = 0,
        hex_value = 1,
        integer_value = 2,
        decimal_value = 3,
        bool_value = 4,
        date_value = 5,
        time_value = 6,
        guid_value = 7,
        unknow_value = 8,
    };

    /// The XML element name of a setting.
    static const char* TAG;

    /// An unnamed setting with an empty value of type `unknow_value`.
    explicit setting_node(std::uint32_t level);
    ~setting_node() override;

    element_type get_type() const override;
    void dump(std::ostream& out, unsigned int indent_width) const override;

    /// Reads a `setting` element over what this setting holds. False, with nothing read, when `node` is no such
    /// element. Throws node_error on a child that a setting does not accept and name_error when the setting is left
    /// without a name.
    bool parse(sysxml::node& node);

    /// The name of the value element of `type`; "unknow_value" for every number outside 0 to 7. Never null.
    static const char* map_value_type(setting_value_type type);

    /// The value as an integer. Hexadecimal and integer texts follow strtoll() (base 16, and base 0 with its 0x and 0
    /// prefixes) and saturate at the limits; a decimal text is cut toward zero and saturates likewise; a bool is 1 for
    /// exactly "true" or "1", else 0. A numeric text that does not convert is 0. All other types give `default_value`.
    long long get_int64(long long default_value) const;

    /// The value as a double: strtod() for a decimal, the integer of get_int64() for the other numeric types. All
    /// other types give `default_value`.
    double get_double(double default_value) const;

    /// The setting's name; a group keys it by the name it has when it is added.
    std::string name;
    /// The value text, exactly as it was read.
    std::string value;
    /// Which value element supplied it.
    setting_value_type value_type;
};

}  // namespace cds_parser

#endif
