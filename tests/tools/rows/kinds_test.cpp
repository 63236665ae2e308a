// What every kind of row needs in this room. A kind without it would be met with an exception.

#include "rows/kinds.h"

#include <gtest/gtest.h>

#include "rows/column_units.h"
#include "rows/part_text.h"
#include "rows/row_identity.h"
#include "rows/table.h"

class Kinds : public testing::TestWithParam<const inventory_kind*> {};

TEST_P(Kinds, HaveColumnsThatTellTheirRowsApart) {
    EXPECT_FALSE(identity_of(*GetParam()).columns.empty());
}

TEST_P(Kinds, HaveUnits) {
    EXPECT_EQ(unit_of(*GetParam(), "NodeIndex"), column_units::index);
    EXPECT_EQ(unit_of(*GetParam(), "a column without a unit"), column_units::plain);
}

TEST_P(Kinds, HaveATextForAPlaceAndAPart) {
    const inventory_table table = {GetParam(), {"NodeIndex", "SerialNo"}, {{std::int64_t{3}, "S1"}}};
    EXPECT_NE(place_text(inventory_row(table, 0)).find("node 3"), std::string::npos);
    EXPECT_NO_THROW(part_text(inventory_row(table, 0)));
}

INSTANTIATE_TEST_SUITE_P(All, Kinds, testing::ValuesIn(kinds::all),
                         [](const auto& tested) { return tested.param->table; });
