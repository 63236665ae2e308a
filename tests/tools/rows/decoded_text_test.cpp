// SPDX-License-Identifier: Apache-2.0

#include "rows/decoded_text.h"

#include <gtest/gtest.h>

#include "rows/kinds.h"
#include "tools/values.h"

TEST(DecodedText, IsTheNameOfANumberWithoutTheNumber) {
    EXPECT_EQ(decoded_text(kinds::memory, "MemType", number(26)), "DDR4");
    EXPECT_EQ(decoded_text(kinds::processors, "Upgrade", number(0x36)), "socket LGA3647-1");
}

TEST(DecodedText, IsTheNamesOfBits) {
    EXPECT_EQ(decoded_text(kinds::memory, "TypeDetail", number(0x2080)), "synchronous, registered");
}

TEST(DecodedText, IsTheNumberWhereItHasNoName) {
    EXPECT_EQ(decoded_text(kinds::memory, "MemType", number(99)), "99");
    EXPECT_EQ(decoded_text(kinds::memory, "TypeDetail", number(0)), "0");
    EXPECT_EQ(decoded_text(kinds::memory, "Later", number(7)), "7");
}

TEST(DecodedText, IsTheNumberThatIsPutTogetherOfOthers) {
    EXPECT_EQ(decoded_text(kinds::processors, "Status", number(0x41)), "65");
}

TEST(DecodedText, IsElseInItsUnit) {
    EXPECT_EQ(decoded_text(kinds::memory, "MemSize", number(32768)), "32 GiB");
    EXPECT_EQ(decoded_text(kinds::memory, "DevLocator", inventory_value("DIMM 1 ")), "DIMM 1 ");
    EXPECT_EQ(decoded_text(kinds::memory, "MemSize", absent), "-");
}
