// SPDX-License-Identifier: Apache-2.0

#include "zebdb_cds_parser/errors.h"

#include <string>

#include <sysipc.h>

namespace cds_parser {

node_error::node_error(const std::string& message) : sysipc::exception(message) {}

node_error::~node_error() = default;

name_error::name_error(const std::string& message) : sysipc::exception(message) {}

name_error::~name_error() = default;

}  // namespace cds_parser
