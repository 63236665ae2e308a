// SPDX-License-Identifier: Apache-2.0

/// How the inventory classifies a PCI function by its ids and its class code. What the numbers mean belongs to the
/// inventory service that reads them.
#ifndef CDS_PARSER_PCI_FUNCTION_TYPE_H
#define CDS_PARSER_PCI_FUNCTION_TYPE_H

#include <cstdint>

namespace cds_parser {

/// "HardwareTypeId": 0 for the storage controllers that have a record elsewhere, 3 for everything else.
std::uint32_t hardware_type(std::int32_t vendor, std::int32_t device, std::int32_t class_code);

/// "FunType": what the function does; 7 is the catch-all.
std::uint32_t function_type(std::int32_t vendor, std::int32_t device, std::int32_t class_code);

}  // namespace cds_parser

#endif
