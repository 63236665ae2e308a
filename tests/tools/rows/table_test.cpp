// SPDX-License-Identifier: Apache-2.0

#include "rows/table.h"
#include "tools/values.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

const inventory_table modules = {
    &kinds::memory,
    {"Id", "DevLocator", "Capacity"},
    {{std::int64_t{1}, "A1", std::uint64_t{18446744073709551615u}}, {std::int64_t{-1}, "A2", absent}}};

}  // namespace

TEST(InventoryRow, FindsAColumnByItsName) {
    EXPECT_EQ(inventory_row(modules, 1)["DevLocator"], inventory_value("A2"));
}

TEST(InventoryRow, HasNeverPutAColumnThatItsTableLacks) {
    EXPECT_EQ(inventory_row(modules, 0)["Colour"], absent);
}

TEST(InventoryRow, GivesSeveralValuesInTheOrderOfTheirNames) {
    EXPECT_THAT(inventory_row(modules, 0).values({"DevLocator", "Colour", "Id"}),
                ElementsAre(inventory_value("A1"), absent, inventory_value(std::int64_t{1})));
}

TEST(InventoryRow, IsOfTheKindOfItsTable) {
    EXPECT_EQ(&inventory_row(modules, 0).kind(), &kinds::memory);
}

TEST(InventoryRow, KnowsItsPlace) {
    EXPECT_EQ(inventory_row(modules, 1).place(), 1u);
}

TEST(InventoryValue, IsANumberWithAllItsBits) {
    EXPECT_EQ(number_in(std::int64_t{-1}), 18446744073709551615u);
    EXPECT_EQ(number_in(std::uint64_t{18446744073709551615u}), 18446744073709551615u);
    EXPECT_EQ(number_in("1"), std::nullopt);
    EXPECT_EQ(number_in(absent), std::nullopt);
}

TEST(InventoryValue, IsATextOrNone) {
    const inventory_value text = "A1";
    ASSERT_NE(text_in(text), nullptr);
    EXPECT_EQ(*text_in(text), "A1");
    EXPECT_EQ(text_in(std::int64_t{1}), nullptr);
}

TEST(InventoryTable, KeepsTheColumnsThatAreNamedInTheirOrder) {
    inventory_table table = modules;
    keep_columns(table, {"DevLocator", "Colour", "Id"});
    EXPECT_THAT(table.columns, ElementsAre("DevLocator", "Id"));
    EXPECT_THAT(table.rows[1], ElementsAre("A2", std::int64_t{-1}));
}
