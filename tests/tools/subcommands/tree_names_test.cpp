// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "tools/subcommands/tree_test.h"

using testing::EndsWith;

// What vendors and devices are called, for one function.
class TreeNames : public tree_test {
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

TEST_F(TreeNames, AreNumbersWhereTheListMayNotBeRead) {
    write("pci.ids", "8086  Chips Inc.\n");
    std::filesystem::permissions(folder() / "pci.ids", std::filesystem::perms::none);
    const command_result result = run_unprivileged("ZEBDB_PCI_IDS=pci.ids zebdb-cds tree");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, EndsWith("function: [8086:1572]\n"));
}

TEST_F(TreeNames, AreNotThoseThatWereOnceFetchedFromTheNetwork) {
    write(".pciids-cache", "#PCI-CACHE-1.0\n1 8086 0 0 0 Cached Inc.\n");
    expect_named("8087  Other Inc.\n", ": [8086:1572]", "HOME=. zebdb-cds tree");
    EXPECT_EQ(read(".pciids-cache"), "#PCI-CACHE-1.0\n1 8086 0 0 0 Cached Inc.\n");
}
