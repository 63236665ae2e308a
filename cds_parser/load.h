// SPDX-License-Identifier: Apache-2.0

/// A load, with a look at the document before it is gone.
#ifndef CDS_PARSER_LOAD_H
#define CDS_PARSER_LOAD_H

#include <functional>

#include <zeb_db.h>

#include "zebdb_cds_parser/document.h"
#include "zebdb_cds_parser/parser.h"

namespace cds_parser {

/// Is shown a document whose rows have all been written. False makes the load fail, without a line in the log.
using document_check = std::function<bool(const document& loaded)>;

inline bool accept_every_document(const document&) {
    return true;
}

/// What parser::parse() and parse_cds() do and give, except for the check.
int load_document(parser& walker, _zeb_db_handle_t* handle, const char* path, const document_check& accepts);
int load_file(_zeb_db_handle_t* handle, const char* path, const document_check& accepts);

}  // namespace cds_parser

#endif
