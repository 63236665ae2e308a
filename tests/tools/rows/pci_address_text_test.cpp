// SPDX-License-Identifier: Apache-2.0

#include "rows/pci_address_text.h"

#include <gtest/gtest.h>

TEST(FullPciAddress, IsTheAddressItself) {
    EXPECT_EQ(full_pci_address("0000:3b:00.0"), "0000:3b:00.0");
    EXPECT_EQ(full_pci_address("10000:3b:1f.7"), "10000:3b:1f.7");
}

TEST(FullPciAddress, HasWhatIsLeftOut) {
    EXPECT_EQ(full_pci_address("3b:00.0"), "0000:3b:00.0");
    EXPECT_EQ(full_pci_address("1:2:3.4"), "0001:02:03.4");
}

TEST(FullPciAddress, IsLowerCase) {
    EXPECT_EQ(full_pci_address("3B:1F.0"), "0000:3b:1f.0");
}

TEST(FullPciAddress, IsNotMadeOfAnythingElse) {
    for (const char* text : {"", "3b", "3b:00", "3b:00.", "g0:00.0", "/component", "CPU1_DIMM_A1", " 3b:00.0"}) {
        EXPECT_EQ(full_pci_address(text), std::nullopt) << text;
    }
}
