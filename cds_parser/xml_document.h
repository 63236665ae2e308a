// SPDX-License-Identifier: Apache-2.0

#ifndef CDS_PARSER_XML_DOCUMENT_H
#define CDS_PARSER_XML_DOCUMENT_H

#include <sysxml.h>

namespace cds_parser {

/// The XML document of one stream that the reader reads.
class xml_document : public sysxml::document {
public:
    using sysxml::document::document;
    ~xml_document() override;
};

}  // namespace cds_parser

#endif
