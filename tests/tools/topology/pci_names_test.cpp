// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

#include "support/scratch_file.h"
#include "tools/topology/topology_test.h"

using testing::EndsWith;

// What vendors and devices are called, for one function.
class PciNames : public topology_test {
protected:
    PciNames() { add_function(1, -1, 0, 1, "VendorId = 0x8086, DeviceId = 0x1572"); }

    void expect_named(const std::string& list, const std::string& name) const {
        const scratch_file ids(list);
        use_names(ids.path());
        EXPECT_EQ(tree(), "Node 1\n`- Segment 0000\n   `- 0000:00:01.0 function" + name + "\n");
    }
};

TEST_F(PciNames, ComeFromTheListOfPciIds) {
    expect_named("8086  Chips Inc.\n\t1572  Ether 710\n", ": Chips Inc. Ether 710");
}

TEST_F(PciNames, AreNumbersForAnUnknownDevice) {
    expect_named("8086  Chips Inc.\n\t1573  Root Port\n", ": Chips Inc. [8086:1572]");
}

TEST_F(PciNames, AreNumbersForAnUnknownVendor) {
    expect_named("8087  Other Inc.\n", ": [8086:1572]");
}

TEST_F(PciNames, AreNumbersWhereThereIsNoList) {
    EXPECT_THAT(tree(), EndsWith("function: [8086:1572]\n"));
}

TEST_F(PciNames, AreNumbersWhereTheListIsDamaged) {
    expect_named("8086  Chips Inc.\n\t\t\t1572\nnonsense\n", ": [8086:1572]");
    expect_named(std::string(100'000, 'x'), ": [8086:1572]");
}

// The C library then takes memory elsewhere and leaves in errno that the heap had none.
TEST_F(PciNames, AreThoseOfTheListWhereTheHeapCannotGrow) {
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto end = (reinterpret_cast<std::uintptr_t>(sbrk(0)) + page - 1) / page * page;
    void* wall =
        mmap(reinterpret_cast<void*>(end), page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
    ASSERT_NE(wall, MAP_FAILED);
    std::string others;
    for (unsigned id = 0x2000; id < 0x10000; ++id) {
        char number[8];
        std::snprintf(number, sizeof number, "%04x", id);
        others += std::string("\t") + number + "  Another one of the vendor's many devices\n";
    }
    expect_named("8086  Chips Inc.\n\t1572  Ether 710\n" + others, ": Chips Inc. Ether 710");
    munmap(wall, page);
}

TEST_F(PciNames, AreMissingWhereThereAreNoNumbers) {
    execute("UPDATE PCIs SET DeviceId = NULL");
    expect_named("8086  Chips Inc.\n", ": Chips Inc. [8086:-]");
    execute("UPDATE PCIs SET VendorId = NULL");
    expect_named("8086  Chips Inc.\n", "");
}

TEST_F(PciNames, AreNumbersWhereThoseAreTooLarge) {
    execute("UPDATE PCIs SET VendorId = 0x18086, DeviceId = -1");
    expect_named("8086  Chips Inc.\n\tffff  Last\n", ": [18086:ffffffffffffffff]");
}

TEST_F(PciNames, AreThereUpToTheLargestNumbers) {
    execute("UPDATE PCIs SET VendorId = 0xFFFF, DeviceId = 0xFFFF");
    expect_named("ffff  Last Inc.\n\tffff  Last One\n", ": Last Inc. Last One");
}

// Of which the lower bits are those of others.
TEST_F(PciNames, AreNumbersAboveThose) {
    execute("UPDATE PCIs SET DeviceId = 0x10000");
    expect_named("8086  Chips Inc.\n8087  Other Inc.\n\t0000  First\n", ": Chips Inc. [8086:10000]");
    execute("UPDATE PCIs SET VendorId = 0x10000");
    expect_named("0000  First Inc.\n", ": [10000:10000]");
}

TEST_F(PciNames, AreNoneWithoutNumbers) {
    const scratch_file list("0000  First Inc.\n\t0000  First\n");
    use_names(list.path());
    pci_names::id forgotten = 0;
    forgotten.reset();
    pci_names names;
    EXPECT_EQ(names.vendor(forgotten), std::nullopt);
    EXPECT_EQ(names.device(0, forgotten), std::nullopt);
    EXPECT_EQ(names.device(0, 0), "First");
}

TEST_F(PciNames, MayBeginWithAnyCharacter) {
    expect_named("8086  ~ Inc.\n", ": ~ Inc. [8086:1572]");
}

TEST_F(PciNames, ComeFromAListBesideThePackedOneThatIsMissing) {
    const scratch_file list("8086  Chips Inc.\n");
    use_names(list.path() + std::string(".gz"));
    EXPECT_THAT(tree(), EndsWith("function: Chips Inc. [8086:1572]\n"));
    use_names(list.path() + std::string(".bz"));
    EXPECT_THAT(tree(), EndsWith("function: [8086:1572]\n"));
}

TEST_F(PciNames, ComeFromAListThatIsNamedAsAPackedOne) {
    const scratch_file other("");
    const std::string name = other.path() + std::string(".gz");
    std::ofstream(name) << "8086  Chips Inc.\n";
    use_names(name);
    const std::string shown = tree();
    unlink(name.c_str());
    EXPECT_THAT(shown, EndsWith("function: Chips Inc. [8086:1572]\n"));
}

TEST_F(PciNames, AreNumbersWhereTheListHasAShortName) {
    use_names("x");
    EXPECT_THAT(tree(), EndsWith("function: [8086:1572]\n"));
}

TEST_F(PciNames, ComeFromTheListOfTheSystemWhereAnEmptyOneIsNamed) {
    unsetenv("ZEBDB_PCI_IDS");
    const std::string shown = tree();
    use_names("");
    EXPECT_EQ(tree(), shown);
}

TEST_F(PciNames, AreNumbersWhereTheListIsDamagedWhateverWentWrongBefore) {
    const scratch_file list("8086  Chips Inc.\n\t\t\t1572\nnonsense\n");
    use_names(list.path());
    pci_names names;
    errno = ENOMEM;
    EXPECT_EQ(names.vendor(0x8086), std::nullopt);
}

TEST_F(PciNames, AreOneLineOfUtf8WhateverIsInTheList) {
    expect_named("8086  Ch\xC3\xBCps\033[2J\n\t1572  a\xFF\tb\n", ": Ch\u00FCps\\x1b[2J a\uFFFD\\tb");
}

TEST_F(PciNames, MayBeLong) {
    const std::string name(400, 'n');
    expect_named("8086  " + name + "\n", ": " + name + " [8086:1572]");
}

TEST_F(PciNames, AreThoseOfBridgesToo) {
    add_bridge(1, -1, 0, 2, "VendorId = 0x8086, DevId = 0x1573");
    execute("DELETE FROM PCIs");
    const scratch_file list("8086  Chips Inc.\n\t1573  Root Port\n");
    use_names(list.path());
    EXPECT_THAT(tree(), EndsWith("`- 0000:00:02.0 bridge: Chips Inc. Root Port\n"));
}
