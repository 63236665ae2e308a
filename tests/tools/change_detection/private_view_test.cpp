// SPDX-License-Identifier: Apache-2.0

#include "change_detection/private_view.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

class PrivateViewHint : public testing::Test {
protected:
    PrivateViewHint() { setenv("ZEBDB_SANDBOX", "/root/folder", 1); }
    ~PrivateViewHint() override { unsetenv("ZEBDB_SANDBOX"); }
};

TEST_F(PrivateViewHint, SaysWhereAFileIsThatHasMoved) {
    for (const std::string path : {"/bin/pci_digest.sh", "/tmp/.dmdb_memory_deleted_flag", "/var/DS/inventory.fkey",
                                   "/var/log/bmc_bdf.bin", "/var/vonk/sys_inventory.digest"}) {
        EXPECT_EQ(private_view_hint(path), " (with --root that is '/root/folder" + path + "')");
    }
}

TEST_F(PrivateViewHint, IsEmptyForAFileThatHasNot) {
    for (const std::string path : {"/bin/pci_digest.s", "/tmp/.dmdb_memory_deleted_fla", "/var/DSx", "/var/logx",
                                   "/var/vonkx", "x/bin/pci_digest.sh", "inventory.db", ""}) {
        EXPECT_EQ(private_view_hint(path), "") << path;
    }
}

TEST_F(PrivateViewHint, IsEmptyWithoutAView) {
    unsetenv("ZEBDB_SANDBOX");
    EXPECT_EQ(private_view_hint("/var/DS/inventory.fkey"), "");
}

TEST(PrivateView, IsNotEnteredWithoutAFolder) {
    EXPECT_NO_THROW(enter_private_view("", {"x.xml"}));
}
