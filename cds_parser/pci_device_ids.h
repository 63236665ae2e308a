// SPDX-License-Identifier: Apache-2.0

/// The PCI devices that the inventory treats in a way of their own.
#ifndef CDS_PARSER_PCI_DEVICE_IDS_H
#define CDS_PARSER_PCI_DEVICE_IDS_H

#include <cstdint>

namespace cds_parser::pci_ids {

// Accelerator that reports an unassigned class code.
constexpr std::int32_t accelerator_vendor = 0x1414;
constexpr std::int32_t accelerator_device = 0xB204;
constexpr std::int32_t accelerator_subsystem = 0x400;

// SAS controller whose RAID models report a plain SAS class code.
constexpr std::int32_t raid_vendor = 0x9005;
constexpr std::int32_t raid_device = 0x28F;

// Maker of on-board storage controllers; its switch's management function is none of them.
constexpr std::int32_t storage_vendor = 0x1000;
constexpr std::int32_t storage_switch_device = 0xB2;

// Maker of PCI Express switches.
constexpr std::int32_t switch_vendor = 0x11F8;
constexpr std::int32_t switch_devices[] = {0x5000, 0x5052, 0x5084};

constexpr std::int32_t intel_vendor = 0x8086;
constexpr std::int32_t flex_140_device = 0x56C1;

}  // namespace cds_parser::pci_ids

#endif
