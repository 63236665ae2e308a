// SPDX-License-Identifier: Apache-2.0

#include "topology/pci_kind.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>

namespace {

struct class_words {
    std::uint64_t class_code;
    const char* base_class;
    const char* subclass;

    friend std::ostream& operator<<(std::ostream& out, const class_words& tested) {
        return out << std::hex << tested.class_code;
    }
};

}  // namespace

class PciKind : public testing::TestWithParam<class_words> {};

TEST_P(PciKind, HasTheseWords) {
    const pci_kind kind = kind_of(GetParam().class_code);
    EXPECT_STREQ(kind.base_class, GetParam().base_class);
    EXPECT_STREQ(kind.subclass, GetParam().subclass);
}

INSTANTIATE_TEST_SUITE_P(
    Of, PciKind,
    testing::Values(class_words{0x000000, "unclassified", nullptr}, class_words{0x010000, "storage", "SCSI"},
                    class_words{0x010100, "storage", "IDE"}, class_words{0x010200, "storage", "floppy disk"},
                    class_words{0x010400, "storage", "RAID"}, class_words{0x010500, "storage", "ATA"},
                    class_words{0x010601, "storage", "SATA"}, class_words{0x010700, "storage", "SAS"},
                    class_words{0x010800, "storage", "non-volatile memory"}, class_words{0x010802, "storage", "NVMe"},
                    class_words{0x010900, "storage", "UFS"}, class_words{0x018000, "storage", nullptr},
                    class_words{0x020000, "network", "Ethernet"}, class_words{0x020700, "network", "InfiniBand"},
                    class_words{0x020800, "network", "fabric"}, class_words{0x030000, "display", "VGA"},
                    class_words{0x030100, "display", "XGA"}, class_words{0x030200, "display", "3D"},
                    class_words{0x038000, "display", nullptr}, class_words{0x040000, "multimedia", "video"},
                    class_words{0x040100, "multimedia", "audio"}, class_words{0x040300, "multimedia", "audio"},
                    class_words{0x050000, "memory", "RAM"}, class_words{0x050100, "memory", "flash"},
                    class_words{0x050200, "memory", "CXL"}, class_words{0x058000, "memory", nullptr},
                    class_words{0x060000, "bridge", "host"}, class_words{0x060100, "bridge", "ISA"},
                    class_words{0x060400, "bridge", "PCI"}, class_words{0x060900, "bridge", "PCI"},
                    class_words{0x060A00, "bridge", "InfiniBand"},
                    class_words{0x070002, "communication", "serial port"},
                    class_words{0x070100, "communication", "parallel port"},
                    class_words{0x070300, "communication", "modem"},
                    class_words{0x080000, "system", "interrupt controller"}, class_words{0x080100, "system", "DMA"},
                    class_words{0x080200, "system", "timer"}, class_words{0x080300, "system", "clock"},
                    class_words{0x080400, "system", "hot plug"}, class_words{0x080500, "system", "SD host"},
                    class_words{0x080600, "system", "IOMMU"}, class_words{0x080700, "system", "event collector"},
                    class_words{0x090000, "input", nullptr}, class_words{0x0A0000, "docking station", nullptr},
                    class_words{0x0B4000, "processor", "coprocessor"}, class_words{0x0C0000, "serial bus", "FireWire"},
                    class_words{0x0C0330, "serial bus", "USB"}, class_words{0x0C0400, "serial bus", "Fibre Channel"},
                    class_words{0x0C0500, "serial bus", "SMBus"}, class_words{0x0C0600, "serial bus", "InfiniBand"},
                    class_words{0x0C0700, "serial bus", "IPMI"}, class_words{0x0C0900, "serial bus", "CAN"},
                    class_words{0x0D1100, "wireless", "Bluetooth"}, class_words{0x0D8000, "wireless", nullptr},
                    class_words{0x0E0000, "intelligent I/O", nullptr}, class_words{0x0F0000, "satellite", nullptr},
                    class_words{0x100000, "encryption", nullptr},
                    class_words{0x110100, "signal processing", "performance counters"},
                    class_words{0x120000, "accelerator", nullptr}, class_words{0x130000, "instrumentation", nullptr},
                    class_words{0x400000, "coprocessor", nullptr}, class_words{0x7F0000, nullptr, nullptr},
                    class_words{0xFF0000, "unassigned", nullptr}, class_words{0x1020000, nullptr, nullptr},
                    class_words{std::numeric_limits<std::uint64_t>::max(), nullptr, nullptr}));
