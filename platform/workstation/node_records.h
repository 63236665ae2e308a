// SPDX-License-Identifier: Apache-2.0

/// Node records of libxml2 that are made and released together.
#ifndef NODE_RECORDS_H
#define NODE_RECORDS_H

#include <cstddef>
#include <memory_resource>
#include <string>

#include <libxml/tree.h>

namespace sysxml {

/// Makes the records of a document's plain elements and texts. libxml2 may read them and link others to them, but must
/// neither free nor extend one: remove_from() has them out of a document before libxml2 frees it.
class node_records {
public:
    /// An element without attributes, linked to nothing. `name` stays the caller's. Throws std::bad_alloc.
    xmlNode* make_element(xmlDoc* doc, const xmlChar* name, int line);

    /// A text, linked to nothing. Throws std::bad_alloc.
    xmlNode* make_text(xmlDoc* doc, const std::string& content, int line);

    /// Removes all elements and texts from the document, and has libxml2 free those that are its own.
    static void remove_from(xmlDoc& doc);

private:
    xmlNode* make_record(xmlDoc* doc, int line, std::size_t size);

    std::pmr::monotonic_buffer_resource memory_{65536};
};

/// The line, or the last one that a record can hold.
unsigned short record_line(int line);

/// Makes `child` the last child of `parent`, as it is: texts that come together stay two.
void append_child(xmlNode& parent, xmlNode& child);

}  // namespace sysxml

#endif
