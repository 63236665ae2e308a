// SPDX-License-Identifier: Apache-2.0

#include "explanation/known_settings.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "support/tree_builder.h"

using testing::NotNull;

namespace {

// The known setting that may be meant in a group of the loader which has these settings.
const char* similar_in(const char* group, const std::vector<setting>& settings, const std::string& name) {
    const std::unique_ptr<cds_parser::setting_group> real(make_group(group, settings));
    return similar_setting(*find_known_group(group), *real, name);
}

}  // namespace

TEST(KnownGroups, AreOneForEachKind) {
    ASSERT_EQ(known_groups().size(), std::size(kinds::all));
    for (const inventory_kind* kind : kinds::all) {
        EXPECT_TRUE(std::any_of(known_groups().begin(), known_groups().end(), [kind](const known_group& group) {
            return group.kind == kind;
        })) << kind->name;
    }
}

TEST(KnownGroups, AreFoundByTheirWholeName) {
    ASSERT_THAT(find_known_group("memory_info"), NotNull());
    EXPECT_EQ(find_known_group("memory_info")->kind, &kinds::memory);
    EXPECT_EQ(find_known_group("memory"), nullptr);
}

TEST(KnownSettings, HaveTheColumnThatTakesThem) {
    const known_group& memory = *find_known_group("memory_info");
    ASSERT_THAT(find_known_setting(memory, "Device Locator"), NotNull());
    EXPECT_STREQ(find_known_setting(memory, "Device Locator")->column, "DevLocator");
    EXPECT_STREQ(find_known_setting(memory, "App Direct Capacity")->column, "AppDirCap");
    EXPECT_STREQ(find_known_setting(*find_known_group("pci_bridge_info"), "Bus Number")->column, "BusNo");
    EXPECT_STREQ(find_known_setting(*find_known_group("pci_device_info"), "Location")->column, "Location");
    EXPECT_STREQ(find_known_setting(*find_known_group("cpu_info"), "Processor ID")->column, "ProcId");
}

TEST(KnownSettings, AreNotThoseOfAnotherGroup) {
    EXPECT_EQ(find_known_setting(*find_known_group("cpu_info"), "Device Locator"), nullptr);
}

TEST(SimilarSetting, IsOneOfTheGroup) {
    EXPECT_STREQ(similar_in("memory_info", {}, "Bank Locatr"), "Bank Locator");
    EXPECT_EQ(similar_in("cpu_info", {}, "Bank Locatr"), nullptr);
}

TEST(SimilarSetting, IsOfEqualsOneThatTheGroupLacks) {
    EXPECT_STREQ(similar_in("cpu_info", {}, "L4 Cache Type"), "L1 Cache Type");
    EXPECT_STREQ(similar_in("cpu_info", {integer("L1 Cache Type", "1")}, "L4 Cache Type"), "L2 Cache Type");
}

TEST(SimilarSetting, NeedNotBeAsNearWhereTheGroupLacksIt) {
    EXPECT_STREQ(similar_in("cpu_info", {}, "Voltaxx"), "Voltage");
    EXPECT_EQ(similar_in("cpu_info", {integer("Voltage", "1")}, "Voltaxx"), nullptr);
    EXPECT_EQ(similar_in("cpu_info", {}, "Voltxxx"), nullptr);
}

TEST(SimilarSetting, OfAnotherThatTheGroupHasMayDifferInOneOfFiveCharacters) {
    EXPECT_STREQ(similar_in("cpu_info", {integer("Thread Count", "1")}, "Thxead Coxnt"), "Thread Count");
    EXPECT_EQ(similar_in("cpu_info", {integer("Thread Count", "1")}, "Txxead Coxnt"), nullptr);
}

TEST(SimilarGroup, IsTheOneThatMayBeMeant) {
    EXPECT_STREQ(similar_group("Memory-Info"), "memory_info");
    EXPECT_STREQ(similar_group("pci_birdge_info"), "pci_bridge_info");
    EXPECT_EQ(similar_group("fan_info"), nullptr);
}
