// SPDX-License-Identifier: Apache-2.0

/// PCI class codes: base class in bits 23-16, subclass in bits 15-8, programming interface in bits 7-0.
#ifndef CDS_PARSER_PCI_CLASS_H
#define CDS_PARSER_PCI_CLASS_H

#include <cstdint>

namespace cds_parser::pci_class {

constexpr std::int32_t mass_storage = 0x01;
constexpr std::int32_t network = 0x02;
constexpr std::int32_t display = 0x03;
constexpr std::int32_t multimedia = 0x04;
constexpr std::int32_t memory = 0x05;
constexpr std::int32_t processor = 0x0B;
constexpr std::int32_t serial_bus = 0x0C;
constexpr std::int32_t intelligent_io = 0x0E;
constexpr std::int32_t encryption = 0x10;
constexpr std::int32_t processing_accelerator = 0x12;

constexpr std::int32_t raid_controller = 0x010400;
constexpr std::int32_t sas_controller = 0x010700;
constexpr std::int32_t nvm_express = 0x010802;
constexpr std::int32_t memory_controller = 0x058000;
constexpr std::int32_t system_peripheral = 0x088000;
constexpr std::int32_t accelerator = 0x120000;
constexpr std::int32_t unassigned = 0xFF0000;

constexpr std::int32_t base_class(std::int32_t class_code) {
    return (class_code >> 16) & 0xFF;
}

constexpr std::int32_t subclass(std::int32_t class_code) {
    return (class_code >> 8) & 0xFF;
}

constexpr std::int32_t programming_interface(std::int32_t class_code) {
    return class_code & 0xFF;
}

}  // namespace cds_parser::pci_class

#endif
