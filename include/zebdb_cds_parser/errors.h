// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the CDS reader throws when the content of a file breaks the grammar.
#ifndef ZEBDB_CDS_PARSER_ERRORS_H
#define ZEBDB_CDS_PARSER_ERRORS_H

#include <string>

#include <sysipc.h>

#include "zebdb_cds_parser/export.h"

namespace cds_parser {

/// An element holds a child that it does not accept: "Unexpected node 'CHILD' in PARENT". Of a child without a name, a
/// CDATA section say, the message is "Unexpected node '" and no more.
class ZEBDB_CDS_PARSER_EXPORT node_error : public sysipc::exception {
public:
    /// A failure with that message.
    explicit node_error(const std::string& message);
    ~node_error() override;
};

/// A setting or a setting group has no name: "empty setting name" or "empty setting group name".
class ZEBDB_CDS_PARSER_EXPORT name_error : public sysipc::exception {
public:
    /// A failure with that message.
    explicit name_error(const std::string& message);
    ~name_error() override;
};

}  // namespace cds_parser

#endif
