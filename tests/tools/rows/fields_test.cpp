// SPDX-License-Identifier: Apache-2.0

#include "rows/fields.h"

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

#include "rows/column_units.h"
#include "rows/enumerations.h"
#include "rows/kinds.h"
#include "rows/table.h"
#include "tools/memory_rows.h"

using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;

class Fields : public testing::TestWithParam<const inventory_kind*> {};

TEST_P(Fields, AreTheColumnsOfANewDatabaseInTheirOrder) {
    std::vector<std::string> described;
    for (const field& each : fields_of(*GetParam())) {
        described.emplace_back(each.column);
    }
    EXPECT_THAT(memory_rows().read().read(*GetParam()).columns, ElementsAreArray(described));
}

TEST_P(Fields, SayWhatTheyMeanAndWhereTheyComeFrom) {
    for (const field& each : fields_of(*GetParam())) {
        EXPECT_THAT(std::string(each.meaning), Not(IsEmpty())) << each.column;
        EXPECT_THAT(each.origin, Not(IsEmpty())) << each.column;
        EXPECT_TRUE(!each.absent_value || !each.absent.empty()) << each.column;
    }
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, Fields, testing::ValuesIn(kinds::all),
                         [](const auto& tested) { return tested.param->name; });

TEST(Field, HasTheUnitOfItsKind) {
    EXPECT_EQ(unit_of(kinds::processors, "MaxSpeed"), column_units::megahertz);
    EXPECT_EQ(unit_of(kinds::memory, "MaxSpeed"), column_units::megatransfers);
    EXPECT_EQ(unit_of(kinds::devices, "MaxSpeed"), column_units::plain);
}

TEST(Field, ThatIsUnknownIsNotDescribed) {
    EXPECT_EQ(find_field(kinds::memory, "Colour"), nullptr);
}

TEST(AbsentValue, IsOneValueOfAColumnAlone) {
    EXPECT_TRUE(is_absent(kinds::memory, "NodeIndex", std::int64_t{4294967295}));
    EXPECT_FALSE(is_absent(kinds::memory, "NodeIndex", std::int64_t{-1}));
    EXPECT_FALSE(is_absent(kinds::memory, "MemSize", std::int64_t{4294967295}));
    EXPECT_TRUE(is_absent(kinds::memory, "ArrayId", std::int64_t{-1}));
    EXPECT_FALSE(is_absent(kinds::memory, "Capacity", std::int64_t{-1}));
    EXPECT_TRUE(is_absent(kinds::memory, "MemSize", {}));
}

TEST(AbsentValue, IsForgottenInATable) {
    inventory_table table = {&kinds::devices,
                             {"BridgeId", "SlotNo", "Location", "Colour"},
                             {{std::int64_t{-1}, std::int64_t{4294967295}, std::int64_t{2}, std::int64_t{-1}},
                              {std::int64_t{1}, {}, {}, "red"}}};
    forget_absent_values(table);
    EXPECT_EQ(table.rows[0], (std::vector<inventory_value>{{}, {}, std::int64_t{2}, std::int64_t{-1}}));
    EXPECT_EQ(table.rows[1], (std::vector<inventory_value>{std::int64_t{1}, {}, {}, "red"}));
}

TEST(Enumerations, HaveEachNumberOnce) {
    for (const enumeration* values : enumerations::all) {
        std::set<std::uint64_t> numbers;
        for (const enumerated_value& each : *values) {
            EXPECT_TRUE(numbers.insert(each.number).second) << values->name << ' ' << each.number;
        }
    }
}

TEST(Enumerations, OfBitsNameBitsOfANumber) {
    for (const enumeration* values : enumerations::all) {
        for (const enumerated_value& each : *values) {
            EXPECT_TRUE(values->role != number_role::bit || each.number < 64) << values->name << ' ' << each.number;
        }
    }
}

TEST(Enumerations, AreAllUsedByAColumn) {
    std::set<const enumeration*> used;
    for (const inventory_kind* kind : kinds::all) {
        for (const field& each : fields_of(*kind)) {
            used.insert(each.values);
        }
    }
    used.erase(nullptr);
    EXPECT_EQ(used, (std::set<const enumeration*>(std::begin(enumerations::all), std::end(enumerations::all))));
}
