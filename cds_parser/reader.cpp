// SPDX-License-Identifier: Apache-2.0

// Reads the element tree from the node records of an XML document. A node that is not the element asked for is told
// by false; content that breaks the grammar inside the right element is told by an exception.

#include <cstring>
#include <fstream>
#include <ios>
#include <istream>
#include <string>

#include <libxml/tree.h>
#include <sysipc.h>
#include <sysxml.h>

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

// The first letter tells nearly all names of a CDS file apart, which spares the comparison of the rest.
bool is_named(const xmlNode* record, const char* name) {
    const auto* actual = reinterpret_cast<const char*>(record->name);
    return actual != nullptr && actual[0] == name[0] && std::strcmp(actual, name) == 0;
}

// A name that elements are asked for again and again. A document keeps each name once as a rule, so that the place
// where this one was seen last tells without its letters.
class element_name {
public:
    explicit element_name(const char* text) : text_(text) {}

    bool is_of(const xmlNode* record) {
        if (record->name != seen_ && is_named(record, text_)) {
            seen_ = record->name;
        }
        return seen_ != nullptr && record->name == seen_;
    }

private:
    const char* text_;
    const xmlChar* seen_ = nullptr;
};

struct value_element {
    explicit value_element(setting_node::setting_value_type value_type)
        : type(value_type), name(value_tags[value_type]) {}

    setting_node::setting_value_type type;
    element_name name;
};

bool is_element(const xmlNode* record) {
    return record->type == XML_ELEMENT_NODE;
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

[[noreturn]] void throw_unexpected(xmlNode* record, const char* parent_tag) {
    std::string message = "Unexpected node '";
    if (const char* name = sysxml::node(record).name()) {
        message.append(name).append("' in ").append(parent_tag);
    }
    throw node_error(message);
}

// Reads elements of one document. Each read() gives false when the record is not that element.
class tree_reader {
public:
    bool read(setting_node& setting, xmlNode* record);
    bool read(setting_group& group, xmlNode* record);
    bool read(child_slot_group& group, xmlNode* record);
    bool read(component& parent, xmlNode* record);

private:
    template <class Container, class Child>
    void read_children(Container& container, void (Container::*add)(Child*), element_name& child_name,
                       xmlNode* element);
    template <class Parent, class Child>
    bool read_child(Parent& parent, void (Parent::*add)(Child*), xmlNode* record);
    bool read_value(setting_node& setting, const xmlNode* element);

    element_name component_name_{component::TAG};
    element_name child_slot_group_name_{child_slot_group::TAG};
    element_name setting_group_name_{setting_group::TAG};
    element_name setting_name_{setting_node::TAG};
    element_name name_name_{"name"};

    // In the order in which a child's name is compared with them: the frequent ones of a real file first.
    value_element values_[8] = {
        value_element(setting_node::hex_value),     value_element(setting_node::text_value),
        value_element(setting_node::integer_value), value_element(setting_node::decimal_value),
        value_element(setting_node::bool_value),    value_element(setting_node::date_value),
        value_element(setting_node::time_value),    value_element(setting_node::guid_value),
    };
};

bool tree_reader::read(component& parent, xmlNode* record) {
    parent.clear();
    if (!is_element(record) || !component_name_.is_of(record)) {
        return false;
    }
    read_children(parent, &component::add_child_slot_group, child_slot_group_name_, record);
    return true;
}

bool tree_reader::read(child_slot_group& group, xmlNode* record) {
    group.clear();
    if (!is_element(record) || !child_slot_group_name_.is_of(record)) {
        return false;
    }
    read_children(group, &child_slot_group::add_component, component_name_, record);
    return true;
}

bool tree_reader::read(setting_group& group, xmlNode* record) {
    group.clear();
    if (!is_element(record) || !setting_group_name_.is_of(record)) {
        return false;
    }
    for (xmlNode* child = first_child(record); child != nullptr; child = next_sibling(child)) {
        if (name_name_.is_of(child)) {
            replace_by_text(group.name, child);
        } else if (!setting_name_.is_of(child)) {
            throw_unexpected(child, setting_group::TAG);
        } else if (!read_child(group, &setting_group::add_setting, child)) {
            break;
        }
    }
    if (group.name.empty()) {
        throw name_error("empty setting group name");
    }
    return true;
}

bool tree_reader::read(setting_node& setting, xmlNode* record) {
    if (!is_element(record) || !setting_name_.is_of(record)) {
        return false;
    }
    for (xmlNode* child = first_child(record); child != nullptr; child = next_sibling(child)) {
        if (name_name_.is_of(child)) {
            replace_by_text(setting.name, child);
        } else if (!read_value(setting, child)) {
            throw_unexpected(child, setting_node::TAG);
        }
    }
    if (setting.name.empty()) {
        throw name_error("empty setting name");
    }
    return true;
}

// What is in a component or slot group: setting groups and, handed to `add`, children of one other kind.
template <class Container, class Child>
void tree_reader::read_children(Container& container, void (Container::*add)(Child*), element_name& child_name,
                                xmlNode* element) {
    for (xmlNode* child = first_child(element); child != nullptr; child = next_sibling(child)) {
        bool is_read = false;
        if (setting_group_name_.is_of(child)) {
            is_read = read_child(container, &Container::add_setting_group, child);
        } else if (child_name.is_of(child)) {
            is_read = read_child(container, add, child);
        } else {
            throw_unexpected(child, Container::TAG);
        }
        if (!is_read) {
            break;
        }
    }
}

// Reads `record` into a new child of `parent`; false when it turned out not to be the child's element. A child whose
// content breaks the grammar is not destroyed: it never was, and nobody owns it yet.
template <class Parent, class Child>
bool tree_reader::read_child(Parent& parent, void (Parent::*add)(Child*), xmlNode* record) {
    auto* child = new Child(parent.level + 1);
    if (!read(*child, record)) {
        delete child;
        return false;
    }
    (parent.*add)(child);
    return true;
}

bool tree_reader::read_value(setting_node& setting, const xmlNode* element) {
    for (value_element& value : values_) {
        if (value.name.is_of(element)) {
            if (replace_by_text(setting.value, element)) {
                setting.value_type = value.type;
            }
            return true;
        }
    }
    return false;
}

}  // namespace

bool setting_node::parse(sysxml::node& node) {
    return tree_reader().read(*this, node.get());
}

bool setting_group::parse(sysxml::node& node) {
    return tree_reader().read(*this, node.get());
}

bool child_slot_group::parse(sysxml::node& node) {
    return tree_reader().read(*this, node.get());
}

bool component::parse(sysxml::node& node) {
    return tree_reader().read(*this, node.get());
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
