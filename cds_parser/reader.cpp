// SPDX-License-Identifier: Apache-2.0

// Reads the element tree from the node records of an XML document. A node that is not the element asked for is told
// by false; content that breaks the grammar inside the right element is told by an exception.

#include <cstddef>
#include <cstring>
#include <fstream>
#include <ios>
#include <istream>
#include <optional>
#include <string>

#include <libxml/tree.h>
#include <sysipc.h>
#include <sysxml.h>

#include "setting_maker.h"
#include "value_tags.h"
#include "xml_document.h"
#include "zebdb_cds_parser/child_slot_group.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/document.h"
#include "zebdb_cds_parser/errors.h"
#include "zebdb_cds_parser/setting_group.h"
#include "zebdb_cds_parser/setting_node.h"

namespace cds_parser {
namespace {

constexpr const char* name_tag = "name";

// In the order in which a child's name is compared with them: the frequent ones of a real file first.
constexpr setting_node::setting_value_type value_elements[] = {
    setting_node::hex_value,  setting_node::text_value, setting_node::integer_value, setting_node::decimal_value,
    setting_node::bool_value, setting_node::date_value, setting_node::time_value,    setting_node::guid_value,
};

// The first letter tells nearly all names of a CDS file apart, which spares the comparison of the rest.
bool is_named(const xmlNode* record, const char* name) {
    const auto* actual = reinterpret_cast<const char*>(record->name);
    return actual != nullptr && actual[0] == name[0] && std::strcmp(actual, name) == 0;
}

bool is_element(const xmlNode* record) {
    return record->type == XML_ELEMENT_NODE;
}

bool is_element(const sysxml::node& node, const char* tag) {
    return is_element(node.get()) && is_named(node.get(), tag);
}

// The first child that is no text at or behind `record`, or null: text between elements means nothing.
xmlNode* skip_text(xmlNode* record) {
    while (record != nullptr && record->type == XML_TEXT_NODE) {
        record = record->next;
    }
    return record;
}

xmlNode* first_child(const xmlNode* record) {
    return skip_text(record->children);
}

xmlNode* next_sibling(const xmlNode* record) {
    return skip_text(record->next);
}

// Whether the element has text at all. Text that begins on a line of its own counts as absent.
bool has_text(const xmlNode* element) {
    const xmlNode* first = element->children;
    return first != nullptr && first->content != nullptr && first->content[0] != '\0' && first->content[0] != '\n';
}

// Leaves `target` as it is, and gives false, when the element has no text.
bool replace_by_text(std::string& target, const xmlNode* element) {
    if (!has_text(element)) {
        return false;
    }
    target.clear();
    target.append(sysxml::node(element->children).content());
    return true;
}

bool read_value(setting_node& setting, const xmlNode* element) {
    for (const setting_node::setting_value_type type : value_elements) {
        if (is_named(element, value_tags[type])) {
            if (replace_by_text(setting.value, element)) {
                setting.value_type = type;
            }
            return true;
        }
    }
    return false;
}

// Reads `record` into a new child of `parent`; false when it turned out not to be the child's element. A child whose
// content breaks the grammar is not destroyed: it never was, and nobody owns it yet.
template <class Parent, class Child>
bool read_child(Parent& parent, void (Parent::*add)(Child*), xmlNode* record) {
    auto* child = new Child(parent.level + 1);
    sysxml::node node(record);
    if (!child->parse(node)) {
        delete child;
        return false;
    }
    (parent.*add)(child);
    return true;
}

[[noreturn]] void throw_unexpected(xmlNode* record, const char* parent_tag) {
    std::string message = "Unexpected node '";
    if (const char* name = sysxml::node(record).name()) {
        message.append(name).append("' in ").append(parent_tag);
    }
    throw node_error(message);
}

// Reads the element of a component or slot group: setting groups and, handed to `add`, children of one other kind.
template <class Container, class Child>
bool read_container(Container& container, void (Container::*add)(Child*), const sysxml::node& node) {
    container.clear();
    if (!is_element(node, Container::TAG)) {
        return false;
    }
    for (xmlNode* child = first_child(node.get()); child != nullptr; child = next_sibling(child)) {
        bool read = false;
        if (is_named(child, setting_group::TAG)) {
            read = read_child(container, &Container::add_setting_group, child);
        } else if (is_named(child, Child::TAG)) {
            read = read_child(container, add, child);
        } else {
            throw_unexpected(child, Container::TAG);
        }
        if (!read) {
            break;
        }
    }
    return true;
}

void read_setting(setting_node& setting, const xmlNode* element) {
    for (xmlNode* child = first_child(element); child != nullptr; child = next_sibling(child)) {
        if (is_named(child, name_tag)) {
            replace_by_text(setting.name, child);
        } else if (!read_value(setting, child)) {
            throw_unexpected(child, setting_node::TAG);
        }
    }
    if (setting.name.empty()) {
        throw name_error("empty setting name");
    }
}

// Of `first` and what follows it, without texts.
std::size_t count_siblings(const xmlNode* first) {
    std::size_t count = 0;
    for (const xmlNode* sibling = first; sibling != nullptr; sibling = next_sibling(sibling)) {
        ++count;
    }
    return count;
}

// Reads `element` into a new setting of the group, which stays behind like read_child()'s when its content breaks the
// grammar. `maker` is made for the first one, with room for all that can follow.
void read_setting_of(setting_group& group, std::optional<setting_maker>& maker, const xmlNode* element) {
    if (!maker) {
        maker.emplace(count_siblings(element));
    }
    setting_node* setting = maker->make(group.level + 1);
    read_setting(*setting, element);
    group.add_setting(setting);
}

}  // namespace

bool setting_node::parse(sysxml::node& node) {
    if (!is_element(node, TAG)) {
        return false;
    }
    read_setting(*this, node.get());
    return true;
}

bool setting_group::parse(sysxml::node& node) {
    clear();
    if (!is_element(node, TAG)) {
        return false;
    }
    std::optional<setting_maker> maker;
    for (xmlNode* child = first_child(node.get()); child != nullptr; child = next_sibling(child)) {
        if (is_named(child, name_tag)) {
            replace_by_text(name, child);
        } else if (is_named(child, setting_node::TAG)) {
            if (!is_element(child)) {
                break;
            }
            read_setting_of(*this, maker, child);
        } else {
            throw_unexpected(child, TAG);
        }
    }
    if (name.empty()) {
        throw name_error("empty setting group name");
    }
    return true;
}

bool child_slot_group::parse(sysxml::node& node) {
    return read_container(*this, &child_slot_group::add_component, node);
}

bool component::parse(sysxml::node& node) {
    return read_container(*this, &component::add_child_slot_group, node);
}

xml_document::~xml_document() = default;

bool document::parse(sysxml::node& node) {
    return root.parse(node);
}

bool document::parse(std::istream& in) {
    const sysxml::parser library;
    xml_document xml(in, false);
    return parse(xml.root());
}

bool document::parse(const char* path) {
    if (path == nullptr) {
        return false;
    }
    std::ifstream file(path);
    return parse(file);
}

std::istream& operator>>(std::istream& in, document& doc) {
    try {
        if (!doc.parse(in)) {
            in.setstate(std::ios::failbit);
        }
    } catch (const sysipc::exception&) {
        in.setstate(std::ios::failbit);
    }
    return in;
}

}  // namespace cds_parser
