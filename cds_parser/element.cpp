// SPDX-License-Identifier: Apache-2.0

#include "zebdb_cds_parser/element.h"

#include <cstdint>

namespace cds_parser {

element::element(std::uint32_t nesting_level) : level(nesting_level) {}

element::~element() = default;

}  // namespace cds_parser
