// SPDX-License-Identifier: Apache-2.0

#ifndef ZEBDB_CDS_PARSER_SETTING_GROUP_H
#define ZEBDB_CDS_PARSER_SETTING_GROUP_H

#include <map>
#include <string>

#include "zebdb_cds_parser/setting_node.h"

namespace cds_parser {

/// A named group of settings, a `setting_group` element of the file. It owns its settings.
///
/// Names are compared byte for byte and must not be null (std::logic_error). Pointers from a lookup stay the group's,
/// valid until the setting is removed or replaced or the group cleared or destroyed.
class ZEBDB_CDS_PARSER_EXPORT setting_group : public element {
public:
    /// The XML element name of a setting group.
    static const char* TAG;

    /// An unnamed, empty group.
    explicit setting_group(std::uint32_t level);
    ~setting_group() override;

    element_type get_type() const override;
    void dump(std::ostream& out, unsigned int indent_width) const override;

    /// Clears the group and reads a `setting_group` element into it. False, with nothing read, when `node` is no such
    /// element. Throws node_error and name_error when the element's content breaks the grammar; the settings that were
    /// read before the failure stay.
    bool parse(sysxml::node& node);

    /// Takes ownership of `setting` under the name it has now; a setting already there under that name is destroyed.
    /// A null pointer is ignored. A setting must not be added twice.
    void add_setting(setting_node* setting);

    /// Destroys the setting of that name; false when there is none.
    bool remove_setting(const char* name);

    /// The setting of that name, or null.
    setting_node* get_setting(const char* name) const;

    /// Whether there is a setting of that name.
    bool has_setting(const char* name) const;

    /// Destroys every setting; the group keeps its name.
    void clear();

    /// The group's name; its owner keys it by the name it has when it is added.
    std::string name;
    /// The settings in byte-wise order of their names.
    std::map<std::string, setting_node*> settings;
};

}  // namespace cds_parser

#endif
