// SPDX-License-Identifier: Apache-2.0

#include "difference/comparable_tables.h"

#include <gmock/gmock.h>

#include "rows/table.h"
#include "tools/values.h"

using testing::ElementsAre;

namespace {

std::vector<inventory_table> bridge_and_function(const inventory_value& bridge_id) {
    return {{&kinds::bridges,
             {"Id", "SegNo", "BusNo", "DevNo", "FunNo"},
             {{number(7), number(0), number(1), number(2), number(3)}}},
            {&kinds::devices, {"Id", "BridgeId", "SlotNo"}, {{number(4), bridge_id, number(5)}}}};
}

inventory_value bridge_of_function(const inventory_value& bridge_id) {
    std::vector<inventory_table> tables = bridge_and_function(bridge_id);
    replace_row_ids(tables);
    return inventory_row(tables[1], 0)["BridgeId"];
}

}  // namespace

TEST(ReplaceRowIds, TakesTheRowsOwnAway) {
    std::vector<inventory_table> tables = bridge_and_function(number(7));
    replace_row_ids(tables);
    EXPECT_THAT(tables[0].columns, ElementsAre("SegNo", "BusNo", "DevNo", "FunNo"));
    EXPECT_THAT(tables[0].rows[0], ElementsAre(number(0), number(1), number(2), number(3)));
    EXPECT_THAT(tables[1].columns, ElementsAre("BridgeId", "SlotNo"));
}

TEST(ReplaceRowIds, GivesABridgesAddressForItsId) {
    EXPECT_EQ(bridge_of_function(number(7)), inventory_value("0000:01:02.3"));
}

TEST(ReplaceRowIds, GivesNothingWhereThereIsNoBridge) {
    EXPECT_EQ(bridge_of_function(absent), absent);
}

TEST(ReplaceRowIds, SaysThatABridgeIsMissing) {
    EXPECT_EQ(bridge_of_function(number(8)), inventory_value("missing"));
}

TEST(ReplaceRowIds, OfTablesWithoutBridgesKnowsNone) {
    std::vector<inventory_table> tables = {{&kinds::memory, {"ArrayId"}, {{number(7)}}}};
    replace_row_ids(tables);
    EXPECT_EQ(inventory_row(tables[0], 0)["ArrayId"], inventory_value("missing"));
}

TEST(AlignColumns, GivesBothTablesTheColumnsOfEither) {
    inventory_table first = {&kinds::memory, {"A", "B"}, {{number(1), number(2)}}};
    inventory_table second = {&kinds::memory, {"C", "B"}, {{number(3), number(4)}}};
    align_columns(first, second);
    EXPECT_THAT(first.columns, ElementsAre("A", "B", "C"));
    EXPECT_EQ(second.columns, first.columns);
    EXPECT_THAT(first.rows[0], ElementsAre(number(1), number(2), absent));
    EXPECT_THAT(second.rows[0], ElementsAre(absent, number(4), number(3)));
}

TEST(RemoveColumns, OfTheNodeKeepsTheRestOfTheKeysOfCards) {
    std::vector<inventory_table> tables = {
        {&kinds::devices, {"NodeIndex", "DevKey"}, {{number(2), number(0x02FFFFFF)}, {number(2), absent}}}};
    remove_columns(tables, {"NodeIndex"});
    EXPECT_THAT(tables[0].columns, ElementsAre("DevKey"));
    EXPECT_THAT(tables[0].rows, ElementsAre(ElementsAre(number(0xFFFFFF)), ElementsAre(absent)));
}

TEST(RemoveColumns, OfTheNodeLeavesATableAsItIsThatKnowsOfNone) {
    std::vector<inventory_table> tables = {
        {&kinds::memory, {"MemSize", "Capacity"}, {{number(0x02FFFFFF), number(1)}}}};
    remove_columns(tables, {"NodeIndex"});
    EXPECT_THAT(tables[0].rows, ElementsAre(ElementsAre(number(0x02FFFFFF), number(1))));
}

TEST(IgnoredColumns, OfSerialsAreAllThatIdentifyAPart) {
    EXPECT_THAT(ignored_columns("serials"), testing::Contains("SerialNo"));
    EXPECT_THAT(ignored_columns("Speed"), ElementsAre("Speed"));
}
