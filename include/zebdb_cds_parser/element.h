// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the four kinds of node of a CDS tree have in common.
#ifndef ZEBDB_CDS_PARSER_ELEMENT_H
#define ZEBDB_CDS_PARSER_ELEMENT_H

#include <cstdint>
#include <iosfwd>

#include "zebdb_cds_parser/export.h"

namespace cds_parser {

/// The class of an element.
enum element_type {
    setting_node_type = 0,      ///< a setting_node
    setting_group_type = 1,     ///< a setting_group
    child_slot_group_type = 2,  ///< a child_slot_group
    component_type = 3,         ///< a component
};

/// Abstract base of the tree's nodes. A container owns what was added to it and destroys it through this class, so
/// every element but a document's root lives on the heap. Elements are not copied.
class ZEBDB_CDS_PARSER_EXPORT element {
public:
    /// An element at that level.
    explicit element(std::uint32_t level);
    virtual ~element();
    element(const element&) = delete;
    element& operator=(const element&) = delete;

    /// Which of the four classes the element is.
    virtual element_type get_type() const = 0;

    /// Writes the element and everything below it as indented XML text: each element `level * indent_width` blanks
    /// deep, each line flushed on its own, names and values as they are stored, nothing escaped. A stream that fails
    /// loses the rest silently.
    virtual void dump(std::ostream& out, unsigned int indent_width) const = 0;

    /// Nesting level: 0 for the root component, one more than the container's for everything else.
    std::uint32_t level;
};

}  // namespace cds_parser

#endif
