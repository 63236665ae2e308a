// SPDX-License-Identifier: Apache-2.0

/// The packed keys of the "PCIs" table.
#ifndef CDS_PARSER_PCI_KEYS_H
#define CDS_PARSER_PCI_KEYS_H

#include <cstdint>

namespace cds_parser {

/// The physical device: node index in bits 31-24, location in 23-16, slot in 15-0.
constexpr std::uint32_t device_key(std::int32_t node_index, std::int32_t location, std::int32_t slot) {
    return (static_cast<std::uint32_t>(node_index) << 24) | ((static_cast<std::uint32_t>(location) << 16) & 0xFF0000) |
           (static_cast<std::uint32_t>(slot) & 0xFFFF);
}

/// The PCI function: segment in bits 31-24, bus in 23-16, device in 15-8, function in 7-0. The device takes a whole
/// byte, unlike the usual PCI packing: saved keys are compared with these.
constexpr std::uint32_t function_key(std::int32_t segment, std::int32_t bus, std::int32_t device,
                                     std::int32_t function) {
    return (static_cast<std::uint32_t>(segment) << 24) | ((static_cast<std::uint32_t>(bus) << 16) & 0xFF0000) |
           ((static_cast<std::uint32_t>(device) << 8) & 0xFFFF) | (static_cast<std::uint32_t>(function) & 0xFF);
}

}  // namespace cds_parser

#endif
