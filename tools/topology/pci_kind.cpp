// SPDX-License-Identifier: Apache-2.0

#include "topology/pci_kind.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace {

struct class_name {
    std::uint64_t number;
    const char* name;
};

constexpr class_name base_classes[] = {
    {0x00, "unclassified"}, {0x01, "storage"},         {0x02, "network"},
    {0x03, "display"},      {0x04, "multimedia"},      {0x05, "memory"},
    {0x06, "bridge"},       {0x07, "communication"},   {0x08, "system"},
    {0x09, "input"},        {0x0A, "docking station"}, {0x0B, "processor"},
    {0x0C, "serial bus"},   {0x0D, "wireless"},        {0x0E, "intelligent I/O"},
    {0x0F, "satellite"},    {0x10, "encryption"},      {0x11, "signal processing"},
    {0x12, "accelerator"},  {0x13, "instrumentation"}, {0x40, "coprocessor"},
    {0xFF, "unassigned"},
};

// By base class and subclass: those that say more than the base class does.
constexpr class_name subclasses[] = {
    {0x0100, "SCSI"},
    {0x0101, "IDE"},
    {0x0102, "floppy disk"},
    {0x0104, "RAID"},
    {0x0105, "ATA"},
    {0x0106, "SATA"},
    {0x0107, "SAS"},
    {0x0108, "non-volatile memory"},
    {0x0109, "UFS"},
    {0x0200, "Ethernet"},
    {0x0207, "InfiniBand"},
    {0x0208, "fabric"},
    {0x0300, "VGA"},
    {0x0301, "XGA"},
    {0x0302, "3D"},
    {0x0400, "video"},
    {0x0401, "audio"},
    {0x0403, "audio"},
    {0x0500, "RAM"},
    {0x0501, "flash"},
    {0x0502, "CXL"},
    {0x0600, "host"},
    {0x0601, "ISA"},
    {0x0604, "PCI"},
    {0x0609, "PCI"},
    {0x060A, "InfiniBand"},
    {0x0700, "serial port"},
    {0x0701, "parallel port"},
    {0x0703, "modem"},
    {0x0800, "interrupt controller"},
    {0x0801, "DMA"},
    {0x0802, "timer"},
    {0x0803, "clock"},
    {0x0804, "hot plug"},
    {0x0805, "SD host"},
    {0x0806, "IOMMU"},
    {0x0807, "event collector"},
    {0x0B40, "coprocessor"},
    {0x0C00, "FireWire"},
    {0x0C03, "USB"},
    {0x0C04, "Fibre Channel"},
    {0x0C05, "SMBus"},
    {0x0C06, "InfiniBand"},
    {0x0C07, "IPMI"},
    {0x0C09, "CAN"},
    {0x0D11, "Bluetooth"},
    {0x1101, "performance counters"},
};

// By the whole code: what a subclass is by its programming interface.
constexpr class_name interfaces[] = {
    {0x010802, "NVMe"},
};

template <std::size_t Count>
const char* name_in(const class_name (&names)[Count], std::uint64_t number) {
    const auto found = std::find_if(std::begin(names), std::end(names),
                                    [number](const class_name& each) { return each.number == number; });
    return found == std::end(names) ? nullptr : found->name;
}

}  // namespace

pci_kind kind_of(std::uint64_t class_code) {
    const char* interface = name_in(interfaces, class_code);
    return {name_in(base_classes, class_code >> 16),
            interface != nullptr ? interface : name_in(subclasses, class_code >> 8)};
}
