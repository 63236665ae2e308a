#include <gmock/gmock.h>

#include "support/topology_test.h"

using testing::EndsWith;

// What vendors and devices are called, for one function.
class TreeNames : public topology_test {
protected:
    TreeNames() { add_function(1, -1, 0, 1, "VendorId = 0x8086, DeviceId = 0x1572"); }

    void expect_named(const std::string& list, const std::string& name,
                      const std::string& shell_command = "zebdb-cds tree") const {
        const command_result result = run_with_names(list, shell_command);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.out, "Node 1\n`- Segment 0000\n   `- 0000:00:01.0 function" + name + "\n");
    }
};

TEST_F(TreeNames, ComeFromTheListOfPciIds) {
    expect_named("8086  Chips Inc.\n\t1572  Ether 710\n", ": Chips Inc. Ether 710");
}

TEST_F(TreeNames, AreThoseOfBridgesToo) {
    add_bridge(1, -1, 0, 2, "VendorId = 0x8086, DevId = 0x1573");
    execute("inventory.db", "DELETE FROM PCIs");
    const command_result result = run_with_names("8086  Chips Inc.\n\t1573  Root Port\n", "zebdb-cds tree");
    EXPECT_THAT(result.out, EndsWith("`- 0000:00:02.0 bridge: Chips Inc. Root Port\n"));
}

TEST_F(TreeNames, AreNumbersForAnUnknownDevice) {
    expect_named("8086  Chips Inc.\n\t1573  Root Port\n", ": Chips Inc. [8086:1572]");
}

TEST_F(TreeNames, AreNumbersForAnUnknownVendor) {
    expect_named("8087  Other Inc.\n", ": [8086:1572]");
}

TEST_F(TreeNames, AreNumbersWhereThereIsNoList) {
    EXPECT_THAT(tree(), EndsWith("function: [8086:1572]\n"));
}

TEST_F(TreeNames, AreNumbersWhereTheListIsDamaged) {
    expect_named("8086  Chips Inc.\n\t\t\t1572\nnonsense\n", ": [8086:1572]");
    expect_named(std::string(100'000, 'x'), ": [8086:1572]");
}

TEST_F(TreeNames, AreNumbersWhereTheListMayNotBeRead) {
    write("pci.ids", "8086  Chips Inc.\n");
    std::filesystem::permissions(folder() / "pci.ids", std::filesystem::perms::none);
    const command_result result = run_unprivileged("ZEBDB_PCI_IDS=pci.ids zebdb-cds tree");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, EndsWith("function: [8086:1572]\n"));
}

TEST_F(TreeNames, AreMissingWhereThereAreNoNumbers) {
    execute("inventory.db", "UPDATE PCIs SET DeviceId = NULL");
    expect_named("8086  Chips Inc.\n", ": Chips Inc. [8086:-]");
    execute("inventory.db", "UPDATE PCIs SET VendorId = NULL");
    expect_named("8086  Chips Inc.\n", "");
}

TEST_F(TreeNames, AreNumbersWhereThoseAreTooLarge) {
    execute("inventory.db", "UPDATE PCIs SET VendorId = 0x18086, DeviceId = -1");
    expect_named("8086  Chips Inc.\n\tffff  Last\n", ": [18086:ffffffffffffffff]");
}

TEST_F(TreeNames, AreOneLineOfUtf8WhateverIsInTheList) {
    expect_named("8086  Ch\xC3\xBCps\033[2J\n\t1572  a\xFF\tb\n", ": Ch\u00FCps\\x1b[2J a\uFFFD\\tb");
}

TEST_F(TreeNames, MayBeLong) {
    const std::string name(400, 'n');
    expect_named("8086  " + name + "\n", ": " + name + " [8086:1572]");
}

TEST_F(TreeNames, AreNotThoseThatWereOnceFetchedFromTheNetwork) {
    write(".pciids-cache", "#PCI-CACHE-1.0\n1 8086 0 0 0 Cached Inc.\n");
    expect_named("8087  Other Inc.\n", ": [8086:1572]", "HOME=. zebdb-cds tree");
    EXPECT_EQ(read(".pciids-cache"), "#PCI-CACHE-1.0\n1 8086 0 0 0 Cached Inc.\n");
}
