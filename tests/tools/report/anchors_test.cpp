// SPDX-License-Identifier: Apache-2.0

#include "report/anchors.h"

#include <gtest/gtest.h>

#include "rows/kinds.h"
#include "tools/values.h"

namespace {

inventory_table modules(const std::vector<inventory_value>& locators) {
    inventory_table table{&kinds::memory, {"DevLocator"}, {}};
    for (const inventory_value& locator : locators) {
        table.rows.push_back({locator});
    }
    return table;
}

std::string id_of(const std::vector<inventory_value>& locators, std::size_t place,
                  const std::vector<std::string>& taken = {}) {
    const std::vector<inventory_table> tables = {modules(locators)};
    return anchors(tables, {}, taken).of(inventory_row(tables[0], place)).id;
}

}  // namespace

TEST(Anchors, AreLocatorsWithoutBlanks) {
    EXPECT_EQ(id_of({"PROC  1 DIMM 3"}, 0), "PROC__1_DIMM_3");
}

TEST(Anchors, OfBridgesAndFunctionsAreAddresses) {
    const std::vector<inventory_table> tables = {
        {&kinds::bridges, {"SegNo", "BusNo", "DevNo", "FunNo"}, {{number(0), number(0x3a), number(2), number(0)}}},
        {&kinds::devices,
         {"SegNo", "BusNo", "DeviceNo", "FunctionNo"},
         {{number(0), number(0x3a), number(2), number(0)}}}};
    const anchors names(tables, {}, {});
    EXPECT_EQ(names.of(inventory_row(tables[0], 0)).id, "0000:3a:02.0");
    EXPECT_EQ(names.of(inventory_row(tables[1], 0)).id, "0000:3a:02.0~2");
    EXPECT_EQ(names.of(inventory_row(tables[1], 0)).place, "0000:3a:02.0");
}

TEST(Anchors, OfOnePlaceAreCounted) {
    EXPECT_EQ(id_of({"A1", "A1", "A2", "A1"}, 0), "A1");
    EXPECT_EQ(id_of({"A1", "A1", "A2", "A1"}, 3), "A1~3");
}

TEST(Anchors, AreNeverTheSame) {
    EXPECT_EQ(id_of({"A1~2", "A1", "A1"}, 2), "A1~3");
    EXPECT_EQ(id_of({"inventory"}, 0, {"inventory"}), "inventory~2");
}

TEST(Anchors, OfPartsWithoutAPlaceAreUnnamed) {
    EXPECT_EQ(id_of({absent, ""}, 0), "unnamed");
    EXPECT_EQ(id_of({absent, ""}, 1), "unnamed~2");
}

TEST(Anchors, HoldNoBlankOfAnyKind) {
    EXPECT_EQ(id_of({"a\tb\nc"}, 0), "a\\tb\\nc");
}

TEST(Anchors, OfWhatWasLeftOutComeBehindTheRows) {
    const std::vector<inventory_table> tables = {modules({"A1"})};
    explanation told = {};
    told.name = "A1";
    const anchors names(tables, {told}, {});
    EXPECT_EQ(names.of_explanation(0).id, "A1~2");
}

TEST(Anchors, OfRowsAreNoneOfWhatWasExplained) {
    const std::vector<inventory_table> tables = {modules({"A1"})};
    explanation recorded = {};
    recorded.name = "A1";
    recorded.row = tables[0];
    explanation left_out = {};
    left_out.name = "A1";
    const anchors names(tables, {recorded, left_out}, {});
    EXPECT_EQ(names.of_explanation(0).id, "");
    EXPECT_EQ(names.of_explanation(1).id, "A1~2");
    EXPECT_EQ(names.of_explanation(1).place, "A1");
}

TEST(Anchors, OfProcessorsAreSockets) {
    const std::vector<inventory_table> tables = {{&kinds::processors, {"DevLocator", "Socket"}, {{"x", "CPU 1"}}}};
    EXPECT_EQ(anchors(tables, {}, {}).of(inventory_row(tables[0], 0)).id, "CPU_1");
}

TEST(Anchors, SkipNamesThatArePlaces) {
    EXPECT_EQ(id_of({"A1", "A1~2", "A1~3", "A1", "A1"}, 3), "A1~4");
    EXPECT_EQ(id_of({"A1", "A1~2", "A1~3", "A1", "A1"}, 4), "A1~5");
}

TEST(FragmentOfAnId, IsAsItIsWhereNothingEndsIt) {
    const std::string plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~:@!$&'()*+,;=/?";
    EXPECT_EQ(fragment_of(plain), plain);
    EXPECT_EQ(fragment_of(std::string("\0\x0f #", 4)), "%00%0F%20%23");
}

TEST(FragmentOfAnId, StandsInAnAddress) {
    EXPECT_EQ(fragment_of("0000:3a:02.0~2"), "0000:3a:02.0~2");
    EXPECT_EQ(fragment_of("a%\"<\xc3\xa4"), "a%25%22%3C%C3%A4");
}
