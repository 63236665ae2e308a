// SPDX-License-Identifier: Apache-2.0

#include "sources/grammar_error.h"

#include <istream>
#include <limits>
#include <list>
#include <optional>

#include <libxml/tree.h>
#include <sysipc.h>
#include <sysxml.h>
#include <zebdb_cds_parser.h>

namespace {

// What the library says to a node: whether it is an element that it reads, and what breaks the grammar in it.
enum class answer { not_read, fine, unexpected_child, no_name };

template <class Element>
answer answer_as(xmlNode* record) {
    Element element(0);
    sysxml::node node(record);
    try {
        return element.parse(node) ? answer::fine : answer::not_read;
    } catch (const cds_parser::node_error&) {
        return answer::unexpected_child;
    } catch (const cds_parser::name_error&) {
        return answer::no_name;
    }
}

answer answer_to(xmlNode& record) {
    for (const auto ask : {answer_as<cds_parser::component>, answer_as<cds_parser::child_slot_group>,
                           answer_as<cds_parser::setting_group>, answer_as<cds_parser::setting_node>}) {
        const answer given = ask(&record);
        if (given != answer::not_read) {
            return given;
        }
    }
    return answer::not_read;
}

// The node by itself, with those children in place of its own.
xmlNode copy_with(const xmlNode& node, xmlNode* children) {
    xmlNode copy = node;
    copy.next = nullptr;
    copy.children = children;
    return copy;
}

// Whether the child may stand in the parent, whatever is in it and beside it.
bool accepts(const xmlNode& parent, const xmlNode& child) {
    xmlNode only_child = copy_with(child, nullptr);
    xmlNode only_parent = copy_with(parent, &only_child);
    return answer_to(only_parent) != answer::unexpected_child;
}

// Whether the element lacks a name. Of its children only those count that are no elements with children of their own.
bool lacks_name(const xmlNode& element) {
    std::list<xmlNode> leaves;
    for (const xmlNode* child = element.children; child != nullptr; child = child->next) {
        xmlNode leaf = copy_with(*child, nullptr);
        if (answer_to(leaf) == answer::not_read) {
            leaf.children = child->children;
            if (!leaves.empty()) {
                leaf.next = &leaves.front();
            }
            leaves.push_front(leaf);
        }
    }
    xmlNode named = copy_with(element, leaves.empty() ? nullptr : &leaves.front());
    return answer_to(named) == answer::no_name;
}

// In the order in which the library reads: a missing name shows only behind the last child.
const xmlNode* first_offender(const xmlNode& element) {
    for (const xmlNode* child = element.children; child != nullptr; child = child->next) {
        if (!accepts(element, *child)) {
            return child;
        }
        if (const xmlNode* deeper = first_offender(*child)) {
            return deeper;
        }
    }
    return lacks_name(element) ? &element : nullptr;
}

// libxml2 numbers no lines of CDATA sections; the nearest node before one is known.
std::optional<unsigned> line_of(const xmlNode* node) {
    constexpr unsigned uncounted = std::numeric_limits<decltype(node->line)>::max();
    while (node != nullptr && node->line == 0) {
        node = node->prev != nullptr ? node->prev : node->parent;
    }
    return node == nullptr || node->line == uncounted ? std::nullopt : std::optional<unsigned>(node->line);
}

}  // namespace

std::optional<grammar_error> find_grammar_error(std::istream& in) {
    try {
        const sysxml::parser library;
        sysxml::document document(in, false);
        const xmlNode* offender = first_offender(*document.root().get());
        if (offender == nullptr) {
            return std::nullopt;
        }
        return grammar_error{line_of(offender), offender->name == nullptr};
    } catch (const sysipc::exception&) {
        return std::nullopt;  // it was read once; what it is now does not matter
    }
}
