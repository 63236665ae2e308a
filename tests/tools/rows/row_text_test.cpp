// SPDX-License-Identifier: Apache-2.0

#include "rows/row_text.h"

#include <gtest/gtest.h>

namespace {

constexpr std::int64_t bus = 0x3B;

const inventory_table functions = {&kinds::devices,
                                   {"SegNo", "BusNo", "DeviceNo", "FunctionNo", "VendorId", "SlotNo", "LanesInUse"},
                                   {{std::int64_t{0}, bus, std::int64_t{31}, std::int64_t{7}, std::int64_t{0x8086},
                                     std::int64_t{-1}, std::int64_t{4}}}};

const inventory_row function(functions, 0);

}  // namespace

TEST(RowText, IsAnAddress) {
    EXPECT_EQ(row_texts::device_address(function), "0000:3b:1f.7");
}

TEST(RowText, HasFourDigitsForEachHalfOfAnId) {
    const inventory_table card = {
        &kinds::devices, {"SubVendorId", "SubDeviceId"}, {{std::int64_t{0x15}, std::int64_t{7}}}};
    EXPECT_EQ(row_texts::subsystem_id(inventory_row(card, 0)), "0015:0007");
}

TEST(RowText, HasADashForAPartThatIsAbsent) {
    EXPECT_EQ(row_texts::device_id(function), "8086:-");
    EXPECT_EQ(row_texts::lanes(function), "4/-");
}

TEST(RowText, IsOneDashWhenAllPartsAreAbsent) {
    EXPECT_EQ(row_texts::subsystem_id(function), "-");
    EXPECT_EQ(row_texts::link_speed(function), "-");
}

TEST(StrippedText, HasNoBlanksAroundIt) {
    EXPECT_EQ(stripped("  Slot 5 "), "Slot 5");
}

TEST(StrippedText, IsEmptyWhereThereAreOnlyDashesAndBlanks) {
    EXPECT_EQ(stripped(" - "), "");
    EXPECT_EQ(stripped(""), "");
}
