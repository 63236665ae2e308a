// SPDX-License-Identifier: Apache-2.0

#include "rows/part_text.h"

#include <gtest/gtest.h>

#include "tools/values.h"

namespace {

std::string place_of(const inventory_table& table) {
    return place_text(inventory_row(table, 0));
}

std::string part_of(const inventory_table& table) {
    return part_text(inventory_row(table, 0));
}

}  // namespace

TEST(ShownText, IsAColumnInItsUnit) {
    const inventory_table table = {&kinds::devices, {"VendorId"}, {{number(0x8086)}}};
    EXPECT_EQ(text_of("VendorId", inventory_row(table, 0)), "0x8086");
    EXPECT_EQ(text_of("MaxLanes", inventory_row(table, 0)), "-");
}

TEST(ShownText, IsATextOfSeveralColumns) {
    const inventory_table table = {&kinds::devices, {"VendorId", "DeviceId"}, {{number(0x8086), number(0x1528)}}};
    EXPECT_EQ(text_of(row_texts::device_id, inventory_row(table, 0)), "8086:1528");
}

TEST(ShownText, IsPlainOnlyWhereItIsAColumnWithoutAUnit) {
    EXPECT_TRUE(is_plain("SlotDesignation", kinds::devices));
    EXPECT_FALSE(is_plain("DevKey", kinds::devices));
    EXPECT_FALSE(is_plain(row_texts::device_id, kinds::devices));
}

TEST(PlaceText, OfAProcessorIsItsSocketAndNode) {
    EXPECT_EQ(place_of({&kinds::processors, {"Socket", "NodeIndex"}, {{"CPU 1", number(0)}}}), "CPU 1, node 0");
}

TEST(PlaceText, OfMemoryIsItsLocatorsAndNode) {
    EXPECT_EQ(place_of({&kinds::memory, {"DevLocator", "BankLocator", "NodeIndex"}, {{" A1 ", "B 0", number(2)}}}),
              "A1, B 0, node 2");
}

TEST(PlaceText, OfAFunctionIsItsAddressAndNode) {
    EXPECT_EQ(place_of({&kinds::devices,
                        {"SegNo", "BusNo", "DeviceNo", "FunctionNo", "NodeIndex"},
                        {{number(0), number(0x3B), number(0), number(1), {}}}}),
              "0000:3b:00.1");
}

TEST(PlaceText, OfWhatNothingIdentifiesSaysSo) {
    EXPECT_EQ(place_of({&kinds::memory, {"DevLocator"}, {{" - "}}}), "unnamed");
}

TEST(PartText, OfMemoryTellsSizeTypeMakerAndNumbers) {
    EXPECT_EQ(part_of({&kinds::memory,
                       {"MemSize", "MemType", "Manufacturer", "PartNo", "SerialNo"},
                       {{number(32768), number(26), "Maker", "P-1 ", "4711"}}}),
              "32 GiB, DDR4, Maker, P-1, serial number 4711");
}

TEST(PartText, LeavesOutASerialNumberThatIsNone) {
    EXPECT_EQ(part_of({&kinds::processors, {"Version", "SerialNo"}, {{"Fast 1", "Not Specified"}}}), "Fast 1");
}

TEST(PartText, OfMemoryWithoutASizeIsAnEmptySlot) {
    EXPECT_EQ(part_of({&kinds::memory, {"MemSize", "Manufacturer"}, {{number(0), "NO DIMM"}}}), "empty slot");
}

TEST(PartText, OfABridgeTellsItsIdsAndBuses) {
    EXPECT_EQ(part_of({&kinds::bridges,
                       {"VendorId", "DevId", "ClsCode", "SndBusNo", "SubBusNo"},
                       {{number(0x8086), number(0xA190), number(0x60400), number(0x3A), number(0x3F)}}}),
              "8086:a190, class 0x060400, to bus 3a-3f");
}

TEST(PartText, OfAPartOfWhichNothingIsKnownIsEmpty) {
    EXPECT_EQ(part_of({&kinds::devices, {"SlotNo"}, {{inventory_value()}}}), "");
}
