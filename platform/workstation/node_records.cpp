// SPDX-License-Identifier: Apache-2.0

#include "node_records.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>

#include <libxml/parserInternals.h>
#include <libxml/tree.h>

namespace sysxml {
namespace {

char made_here;  // its address marks a record

// Only the links to children are followed when a node is freed.
void free_others(xmlNode* first) {
    for (xmlNode* node = first; node != nullptr;) {
        xmlNode* next = node->next;
        if (node->type == XML_ELEMENT_NODE) {
            free_others(node->children);
            node->children = nullptr;
        }
        if (node->_private != &made_here) {
            xmlFreeNode(node);
        }
        node = next;
    }
}

}  // namespace

xmlNode* node_records::make_record(xmlDoc* doc, int line, std::size_t size) {
    auto* record = static_cast<xmlNode*>(memory_.allocate(size));
    std::memset(record, 0, sizeof *record);
    record->_private = &made_here;
    record->doc = doc;
    record->line = record_line(line);
    return record;
}

xmlNode* node_records::make_element(xmlDoc* doc, const xmlChar* name, int line) {
    xmlNode* element = make_record(doc, line, sizeof(xmlNode));
    element->type = XML_ELEMENT_NODE;
    element->name = name;
    return element;
}

xmlNode* node_records::make_text(xmlDoc* doc, const std::string& content, int line) {
    xmlNode* text = make_record(doc, line, sizeof(xmlNode) + content.size() + 1);
    text->type = XML_TEXT_NODE;
    text->name = xmlStringText;
    text->content = reinterpret_cast<xmlChar*>(text + 1);
    std::memcpy(text->content, content.c_str(), content.size() + 1);
    return text;
}

void node_records::remove_from(xmlDoc& doc) {
    if (xmlNode* root = xmlDocGetRootElement(&doc)) {
        xmlUnlinkNode(root);
        free_others(root);
    }
}

unsigned short record_line(int line) {
    constexpr int last = std::numeric_limits<unsigned short>::max();
    return static_cast<unsigned short>(std::min(line, last));
}

void append_child(xmlNode& parent, xmlNode& child) {
    child.parent = &parent;
    child.prev = parent.last;
    (parent.last == nullptr ? parent.children : parent.last->next) = &child;
    parent.last = &child;
}

}  // namespace sysxml
