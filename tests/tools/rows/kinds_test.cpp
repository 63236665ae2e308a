// SPDX-License-Identifier: Apache-2.0

// What every kind of row needs in this room. A kind without it would be met with an exception.

#include "rows/kinds.h"

#include <gmock/gmock.h>

#include <set>
#include <string>

#include "rows/column_units.h"
#include "rows/fields.h"
#include "rows/kind_description.h"
#include "rows/part_text.h"
#include "rows/table.h"
#include "tools/memory_rows.h"

using testing::UnorderedElementsAreArray;

TEST(KindsOfRow, AreTheLoadersKindsOfRecord) {
    std::vector<const cds_parser::record_kind*> records;
    for (const inventory_kind* kind : kinds::all) {
        records.push_back(&kind->record);
    }
    EXPECT_THAT(records, UnorderedElementsAreArray(cds_parser::record_kinds));
}

class Kinds : public testing::TestWithParam<const inventory_kind*> {};

TEST_P(Kinds, HaveColumnsThatTellTheirRowsApart) {
    EXPECT_FALSE(GetParam()->description().identity.columns.empty());
}

TEST_P(Kinds, HaveUnits) {
    EXPECT_EQ(unit_of(*GetParam(), "NodeIndex"), column_units::plain);
    EXPECT_EQ(unit_of(*GetParam(), "a column without a unit"), column_units::plain);
}

TEST_P(Kinds, HaveATextForAPlaceAndAPart) {
    const inventory_table table = {GetParam(), {"NodeIndex", "SerialNo"}, {{std::int64_t{3}, "S1"}}};
    EXPECT_NE(place_text(inventory_row(table, 0)).find("node 3"), std::string::npos);
    EXPECT_NO_THROW(part_text(inventory_row(table, 0)));
}

TEST_P(Kinds, HaveColumnsFromSettingsButForThoseThatTheWritersWorkOut) {
    const std::set<std::string> worked_out = {"Id",     "NodeIndex", "ArrayId",    "ParentId",       "BridgeId",
                                              "DevKey", "FunKey",    "HardwareId", "HardwareTypeId", "FunType"};
    std::set<std::string> others;
    for (const std::string& column : memory_rows().read().read(*GetParam()).columns) {
        if (worked_out.count(column) == 0) {
            others.insert(column);
        }
    }
    std::set<std::string> recorded;
    for (const cds_parser::column& column : GetParam()->description().recorded) {
        recorded.insert(column.name);
    }
    EXPECT_EQ(recorded, others);
}

INSTANTIATE_TEST_SUITE_P(All, Kinds, testing::ValuesIn(kinds::all),
                         [](const auto& tested) { return tested.param->record.table; });
