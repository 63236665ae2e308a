// SPDX-License-Identifier: Apache-2.0

#include "zebdb_cds_parser/document.h"

namespace cds_parser {

document::document() : root(0) {}

document::~document() = default;

}  // namespace cds_parser
