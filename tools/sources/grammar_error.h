// SPDX-License-Identifier: Apache-2.0

/// Where a CDS file breaks the grammar; the library says only how.
#ifndef TOOLS_SOURCES_GRAMMAR_ERROR_H
#define TOOLS_SOURCES_GRAMMAR_ERROR_H

#include <istream>
#include <optional>

/// A node that does not belong where it stands, or an element that lacks a name.
struct grammar_error {
    std::optional<unsigned> line;  ///< nothing when there are more lines than are counted
    bool is_about_no_element;      ///< the node is of a kind that has no name, a CDATA section say
};

/// The first one in `in`; nothing when there is none, or when it is no XML.
std::optional<grammar_error> find_grammar_error(std::istream& in);

#endif
