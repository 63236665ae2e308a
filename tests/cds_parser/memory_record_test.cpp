// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <memory>

#include "support/expected_column.h"
#include "support/recording_platform.h"
#include "support/tree_builder.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Memory of any kind.
const std::vector<expected_column> memory_columns = {
    {integer("Slot Number", "1"), "SlotNo", "uint:1"},
    {integer("Total Width", "2"), "TotalWidth", "uint:2"},
    {integer("Data Width", "3"), "DataWidth", "uint:3"},
    {integer("Size in MB", "4"), "MemSize", "uint:4"},
    {integer("Form Factor", "5"), "FormFactor", "uint:5"},
    {text("Device Locator", "DIMM 1"), "DevLocator", "text:DIMM 1"},
    {text("Bank Locator", "Bank 1"), "BankLocator", "text:Bank 1"},
    {integer("Memory Type", "6"), "MemType", "uint:6"},
    {hex("Type Detail", "1080"), "TypeDetail", "uint:4224"},
    {integer("Maximum Speed", "7"), "MaxSpeed", "uint:7"},
    {integer("Configured Memory Clock Speed", "8"), "ClockSpeed", "uint:8"},
    {text("Manufacturer", "Intel"), "Manufacturer", "text:Intel"},
    {text("Serial Number", "Serial"), "SerialNo", "text:Serial"},
    {text("Asset Tag", "Tag"), "AssetTag", "text:Tag"},
    {text("Part Number", "Part"), "PartNo", "text:Part"},
    {integer("Attributes", "9"), "Attributes", "uint:9"},
};

// Persistent memory alone.
const std::vector<expected_column> persistent_memory_columns = {
    {integer("Capacity", "10"), "Capacity", "uint64:10"},
    {integer("Memory Capacity", "11"), "MemCapacity", "uint64:11"},
    {integer("App Direct Capacity", "12"), "AppDirCap", "uint64:12"},
    {integer("Unconfigured Capacity", "13"), "UnconfigCap", "uint64:13"},
    {integer("Inaccessible Capacity", "14"), "InaccCap", "uint64:14"},
    {integer("Reserved Capacity", "15"), "ReservedCap", "uint64:15"},
    {integer("Classification", "16"), "Classification", "uint:16"},
    {text("Firmware Version", "Firmware"), "FirmwareVersion", "text:Firmware"},
    {text("SoftwareID", "Software"), "SoftwareID", "text:Software"},
    {integer("CPUIndex", "17"), "CPUIndex", "uint:17"},
    {integer("iMCNum", "18"), "iMCNum", "uint:18"},
    {integer("ChannelNum", "19"), "ChannelNum", "uint:19"},
    {integer("DimmNum", "20"), "DimmNum", "uint:20"},
};

// A module of persistent memory with everything there is to say about it.
std::vector<setting> persistent_module() {
    std::vector<setting> settings = settings_of(memory_columns);
    for (const expected_column& expected : persistent_memory_columns) {
        settings.push_back(expected.given);
    }
    return settings;
}

const column_values no_bridge_no_server = {{"ArrayId", "uint64:18446744073709551615"},
                                           {"NodeIndex", "uint:4294967295"}};

class MemoryRecord : public testing::Test {
protected:
    MemoryRecord() { parser.init(); }

    // A later setting replaces an earlier one of its name.
    int write(std::vector<setting> settings, const std::vector<setting>& changes = {}) {
        settings.insert(settings.end(), changes.begin(), changes.end());
        const std::unique_ptr<cds_parser::component> memory(make_component("memory_info", settings));
        return parser.parse_memory(platform.handle(), memory.get());
    }

    // The columns of the only row when a persistent module is written with these changes.
    column_values columns_of_module(const std::vector<setting>& changes) {
        EXPECT_EQ(write(persistent_module(), changes), 1);
        EXPECT_EQ(platform.rows.size(), 1u);
        return platform.rows.at(0).columns;
    }

    recording_platform platform;
    cds_parser::parser parser;
};

// The columns of ordinary memory, one of them with another value.
column_values ordinary_columns(const std::string& changed, const std::string& value) {
    column_values columns = columns_of(no_bridge_no_server, memory_columns);
    for (auto& [column, put] : columns) {
        if (column == changed) {
            put = value;
        }
    }
    return columns;
}

}  // namespace

TEST_F(MemoryRecord, PutsEveryColumnOfPersistentMemoryInOrder) {
    parser.parent_id = 41;
    parser.node_index = 2;
    ASSERT_EQ(write(persistent_module()), 1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0].table, "Memory");
    EXPECT_EQ(platform.rows[0].columns,
              columns_of(columns_of({{"ArrayId", "uint64:41"}, {"NodeIndex", "uint:2"}}, memory_columns),
                         persistent_memory_columns));
}

TEST_F(MemoryRecord, PutsOnlyTheColumnOfAnOnlySetting) {
    for (const expected_column& expected : memory_columns) {
        SCOPED_TRACE(expected.column);
        platform.rows.clear();
        ASSERT_EQ(write({expected.given}), 1);
        ASSERT_EQ(platform.rows.size(), 1u);
        EXPECT_EQ(platform.rows[0].columns, columns_of(no_bridge_no_server, {expected}));
    }
}

TEST_F(MemoryRecord, PutsOnlyTheColumnOfAnOnlyPersistentMemorySetting) {
    const std::vector<expected_column> persistent = {
        {hex("Type Detail", "1000"), "TypeDetail", "uint:4096"},
        {text("Manufacturer", "Intel"), "Manufacturer", "text:Intel"},
    };
    for (const expected_column& expected : persistent_memory_columns) {
        SCOPED_TRACE(expected.column);
        platform.rows.clear();
        ASSERT_EQ(write(settings_of(persistent), {expected.given}), 1);
        ASSERT_EQ(platform.rows.size(), 1u);
        EXPECT_EQ(platform.rows[0].columns, columns_of(columns_of(no_bridge_no_server, persistent), {expected}));
    }
}

TEST_F(MemoryRecord, OfPersistentMemoryWithAsManySettingsOfItsOwnAsOthersIsWritten) {
    ASSERT_EQ(write({hex("Type Detail", "1000"), text("Manufacturer", "Intel"), integer("Capacity", "10"),
                     integer("DimmNum", "20")}),
              1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_THAT(platform.rows[0].column_names(),
                ElementsAre("ArrayId", "NodeIndex", "TypeDetail", "Manufacturer", "Capacity", "DimmNum"));
}

TEST_F(MemoryRecord, OfPersistentMemoryWithoutAnySettingOfItsOwnIsWritten) {
    EXPECT_EQ(write(settings_of(memory_columns)), 1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0].columns, columns_of(no_bridge_no_server, memory_columns));
}

TEST_F(MemoryRecord, OfAnotherManufacturerHasNoPersistentMemoryColumns) {
    EXPECT_EQ(columns_of_module({text("Manufacturer", "Micron")}), ordinary_columns("Manufacturer", "text:Micron"));
}

TEST_F(MemoryRecord, OfIntelInCapitalsHasNoPersistentMemoryColumns) {
    EXPECT_EQ(columns_of_module({text("Manufacturer", "INTEL")}), ordinary_columns("Manufacturer", "text:INTEL"));
}

TEST_F(MemoryRecord, OfIntelFollowedByABlankHasNoPersistentMemoryColumns) {
    EXPECT_EQ(columns_of_module({text("Manufacturer", "Intel ")}), ordinary_columns("Manufacturer", "text:Intel "));
}

TEST_F(MemoryRecord, ThatIsVolatileHasNoPersistentMemoryColumns) {
    EXPECT_EQ(columns_of_module({hex("Type Detail", "0080")}), ordinary_columns("TypeDetail", "uint:128"));
}

TEST_F(MemoryRecord, WithEveryBitOfTheTypeDetailButTheNonVolatileOneHasNoPersistentMemoryColumns) {
    EXPECT_EQ(columns_of_module({hex("Type Detail", "EFFF")}), ordinary_columns("TypeDetail", "uint:61439"));
}

TEST_F(MemoryRecord, WithATypeDetailThatIsNoNumberHasNoPersistentMemoryColumns) {
    EXPECT_EQ(columns_of_module({text("Type Detail", "4096")}), ordinary_columns("TypeDetail", "uint:0"));
}

TEST_F(MemoryRecord, WithoutTypeDetailHasNoPersistentMemoryColumns) {
    ASSERT_EQ(write({text("Manufacturer", "Intel"), integer("Capacity", "10")}), 1);
    EXPECT_THAT(platform.rows.at(0).column_names(), ElementsAre("ArrayId", "NodeIndex", "Manufacturer"));
}

TEST_F(MemoryRecord, WithoutManufacturerHasNoPersistentMemoryColumns) {
    ASSERT_EQ(write({hex("Type Detail", "1080"), integer("Capacity", "10")}), 1);
    EXPECT_THAT(platform.rows.at(0).column_names(), ElementsAre("ArrayId", "NodeIndex", "TypeDetail"));
}

TEST_F(MemoryRecord, WithOnlyPersistentMemorySettingsButNotPersistentLeavesNoRowAndSucceeds) {
    EXPECT_EQ(write(settings_of(persistent_memory_columns)), 1);
    EXPECT_THAT(platform.rows, IsEmpty());
}

TEST_F(MemoryRecord, WithoutAKnownSettingLeavesNoRowAndSucceedsWithTheFirstColumnsPut) {
    platform.calls.clear();
    EXPECT_EQ(write({integer("Frobnication", "8")}), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("zeb_db_content_clear", "zeb_db_content_put_uint64 ArrayId 18446744073709551615",
                            "zeb_db_content_put_uint NodeIndex 4294967295"));
}

TEST_F(MemoryRecord, KeepsAllBitsOfTheCapacitiesAndTheLow32OfTheSize) {
    const column_values columns =
        columns_of_module({hex("Capacity", "0x1F400000000"), hex("Memory Capacity", "0x1F400000001"),
                           hex("App Direct Capacity", "0x1F400000002"), hex("Unconfigured Capacity", "0x1F400000003"),
                           hex("Inaccessible Capacity", "0x1F400000004"), hex("Reserved Capacity", "0x1F400000005"),
                           hex("Size in MB", "0x100000002")});
    const recorded_row row{"Memory", columns};
    EXPECT_EQ(row["Capacity"], "uint64:2147483648000");
    EXPECT_EQ(row["MemCapacity"], "uint64:2147483648001");
    EXPECT_EQ(row["AppDirCap"], "uint64:2147483648002");
    EXPECT_EQ(row["UnconfigCap"], "uint64:2147483648003");
    EXPECT_EQ(row["InaccCap"], "uint64:2147483648004");
    EXPECT_EQ(row["ReservedCap"], "uint64:2147483648005");
    EXPECT_EQ(row["MemSize"], "uint:2");
}

TEST_F(MemoryRecord, TakesTextAsItIsAndNonNumericValuesOfNumbersAsZero) {
    ASSERT_EQ(write({text("Part Number", " two  blanks "), text("Total Width", "72")}), 1);
    EXPECT_EQ(platform.rows.at(0)["PartNo"], "text: two  blanks ");
    EXPECT_EQ(platform.rows.at(0)["TotalWidth"], "uint:0");
}

TEST_F(MemoryRecord, EmptiesTheBufferPutsAndInsertsInThatOrder) {
    platform.calls.clear();
    ASSERT_EQ(write({integer("Slot Number", "1"), text("Asset Tag", "Tag")}), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("zeb_db_content_clear", "zeb_db_content_put_uint64 ArrayId 18446744073709551615",
                            "zeb_db_content_put_uint NodeIndex 4294967295", "zeb_db_content_put_uint SlotNo 1",
                            "zeb_db_content_put_text AssetTag Tag", "zeb_db_insert Memory"));
}

TEST_F(MemoryRecord, ReadsTheFirstOfSeveralGroups) {
    const std::unique_ptr<cds_parser::component> memory(make_component("memory_info", {integer("Slot Number", "1")}));
    memory->add_setting_group(make_group("memory_info", {integer("Slot Number", "2")}));
    ASSERT_EQ(parser.parse_memory(platform.handle(), memory.get()), 1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0]["SlotNo"], "uint:1");
}

TEST_F(MemoryRecord, KeepsTheIdOfTheNewRow) {
    platform.next_row_id = 77;
    ASSERT_EQ(write({integer("Slot Number", "1")}), 1);
    EXPECT_EQ(parser.last_row_id, 77);
}

TEST_F(MemoryRecord, LogsAWarningWhenTheInsertFails) {
    platform.fail("zeb_db_insert", 5);
    EXPECT_EQ(write({text("Bank Locator", "Bank 1"), text("Device Locator", "DIMM 1")}), 0);
    EXPECT_THAT(platform.log, ElementsAre("WARNING: failed to insert Memory (Bank 1), rc=5"));
}

TEST_F(MemoryRecord, LogsAnEmptyBankWhenTheFailingModuleHasNone) {
    platform.fail("zeb_db_insert", -5);
    EXPECT_EQ(write({text("Device Locator", "DIMM 1")}), 0);
    EXPECT_THAT(platform.log, ElementsAre("WARNING: failed to insert Memory (), rc=-5"));
}

TEST_F(MemoryRecord, IsInsertedEvenIfNoColumnCanBePut) {
    platform.fail("zeb_db_content_put_text");
    platform.fail("zeb_db_content_put_uint");
    platform.fail("zeb_db_content_put_uint64");
    EXPECT_EQ(write(persistent_module()), 1);
    EXPECT_EQ(platform.count("zeb_db_insert"), 1u);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(MemoryRecord, FailsSilentlyWithoutItsGroup) {
    platform.calls.clear();
    cds_parser::component other(0);
    EXPECT_EQ(parser.parse_memory(platform.handle(), &other), 0);
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(MemoryRecord, OfAnArrayDoesNothingAndSucceeds) {
    platform.calls.clear();
    const std::unique_ptr<cds_parser::component> array(make_component("memory_info", {integer("Slot Number", "1")}));
    EXPECT_EQ(parser.parse_memory_array(platform.handle(), array.get()), 1);
    EXPECT_EQ(parser.parse_memory_array(platform.handle(), nullptr), 1);
    EXPECT_THAT(platform.calls, IsEmpty());
}
