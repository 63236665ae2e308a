// SPDX-License-Identifier: Apache-2.0

#ifndef ZEBDB_CDS_PARSER_COMPONENT_H
#define ZEBDB_CDS_PARSER_COMPONENT_H

#include <list>
#include <map>
#include <string>
#include <vector>

#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {

class child_slot_group;

/// A piece of hardware, a `component` element of the file. What it is, its setting groups tell. It owns its setting
/// groups and its child slot groups.
///
/// Names are compared byte for byte and must not be null (std::logic_error). Pointers from a lookup stay the
/// component's, valid until the element is removed or the component cleared or destroyed.
class ZEBDB_CDS_PARSER_EXPORT component : public element {
public:
    /// The XML element name of a component.
    static const char* TAG;

    /// An empty component.
    explicit component(std::uint32_t level);
    ~component() override;

    element_type get_type() const override;
    void dump(std::ostream& out, unsigned int indent_width) const override;

    /// Clears the component and reads a `component` element into it. False, with nothing read, when `node` is no such
    /// element. Throws node_error and name_error when the element's content breaks the grammar; what was read before
    /// the failure stays.
    bool parse(sysxml::node& node);

    /// Takes ownership of `group`, behind the groups of the same name. A null pointer is ignored. A group must not be
    /// added twice.
    void add_setting_group(setting_group* group);

    /// The first-added setting group of that name, or null.
    setting_group* get_setting_group(const char* name) const;

    /// Appends every setting group of that name to `out`, first added first; `out` keeps what it held.
    void get_setting_group(const char* name, std::vector<setting_group*>& out) const;

    /// Whether there is a setting group of that name.
    bool has_setting_group(const char* name) const;

    /// Destroys every setting group of that name; false when there is none.
    bool remove_setting_group(const char* name);

    /// Destroys every setting group.
    void clear_setting_groups();

    /// Takes ownership of `group`, behind the slot groups already there. A null pointer is ignored.
    void add_child_slot_group(child_slot_group* group);

    /// Appends every child slot group to `out` in order; `out` keeps what it held.
    void get_child_slot_groups(std::vector<child_slot_group*>& out) const;

    /// Destroys every child slot group.
    void clear_child_slot_groups();

    /// Destroys every setting group, then every child slot group.
    void clear();

    /// The setting groups in byte-wise order of their names, those of one name in the order of adding.
    std::multimap<std::string, setting_group*> setting_groups;
    /// The child slot groups in the order of adding.
    std::list<child_slot_group*> child_slot_groups;
};

}  // namespace cds_parser

#endif
