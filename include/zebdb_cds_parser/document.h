// SPDX-License-Identifier: Apache-2.0

#ifndef ZEBDB_CDS_PARSER_DOCUMENT_H
#define ZEBDB_CDS_PARSER_DOCUMENT_H

#include <iosfwd>

#include "zebdb_cds_parser/component.h"

namespace cds_parser {

/// A CDS file in memory. Destroying the document destroys the whole tree. It belongs to one thread at a time; several
/// threads may read, walk and dump one each.
///
/// The parse members replace what the document holds. They return false when the root element is not a `component`,
/// and throw node_error or name_error when the content breaks the grammar and sysipc::exception when the input cannot
/// be read or is not well-formed XML. That last failure leaves the document as it was; after the others the tree holds
/// what was read before them.
class ZEBDB_CDS_PARSER_EXPORT document {
public:
    /// A document whose root has nothing in it.
    document();
    virtual ~document();
    document(const document&) = delete;
    document& operator=(const document&) = delete;

    /// Reads `node` as the root component.
    bool parse(sysxml::node& node);

    /// Reads the whole of `in`.
    bool parse(std::istream& in);

    /// Reads the file at `path`. A null path gives false and leaves the document as it is.
    bool parse(const char* path);

    /// Writes the XML declaration and the whole tree, see element::dump().
    void dump(std::ostream& out, unsigned int indent_width) const;

    /// The root component, at level 0.
    component root;
};

/// Reads `doc` from `in`. Input that is refused, for whatever reason, sets the stream's fail bit; the message is
/// dropped and nothing of sysipc::exception or derived from it is thrown.
ZEBDB_CDS_PARSER_EXPORT std::istream& operator>>(std::istream& in, document& doc);

/// Dumps `doc`, two blanks a level.
ZEBDB_CDS_PARSER_EXPORT std::ostream& operator<<(std::ostream& out, const document& doc);

}  // namespace cds_parser

#endif
