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

const std::vector<expected_column> processor_columns = {
    {text("Socket Designation", "CPU 1"), "Socket", "text:CPU 1"},
    {integer("Processor Type", "1"), "ProcType", "uint:1"},
    {integer("Processor Family", "2"), "Family", "uint:2"},
    {text("Processor Manufacturer", "Maker"), "Manufacturer", "text:Maker"},
    {integer("Processor ID", "3"), "ProcId", "uint64:3"},
    {text("Processor Version", "Version"), "Version", "text:Version"},
    {integer("Voltage", "4"), "Voltage", "uint:4"},
    {integer("External Clock", "5"), "ExtClock", "uint:5"},
    {integer("Max Speed", "6"), "MaxSpeed", "uint:6"},
    {integer("Current Speed", "7"), "CurSpeed", "uint:7"},
    {integer("Status", "8"), "Status", "uint:8"},
    {integer("Processor Upgrade", "9"), "Upgrade", "uint:9"},
    {text("Serial Number", "Serial"), "SerialNo", "text:Serial"},
    {text("Asset Tag", "Tag"), "AssetTag", "text:Tag"},
    {text("Part Number", "Part"), "PartNo", "text:Part"},
    {integer("Core Count", "10"), "CoreCount", "uint:10"},
    {integer("Core Enabled", "11"), "CoreEnabled", "uint:11"},
    {integer("Thread Count", "12"), "ThreadCount", "uint:12"},
    {integer("Processor Characteristics", "13"), "Characteristics", "uint:13"},
    {integer("L1 Cache Maximum Size", "14"), "L1CacheMaxSize", "uint:14"},
    {integer("L1 Cache Installed Size", "15"), "L1CacheInstalled", "uint:15"},
    {integer("L1 Cache Type", "16"), "L1CacheType", "uint:16"},
    {integer("L1 Cache Configuration", "17"), "L1CacheConfig", "uint:17"},
    {integer("L2 Cache Maximum Size", "18"), "L2CacheMaxSize", "uint:18"},
    {integer("L2 Cache Installed Size", "19"), "L2CacheInstalled", "uint:19"},
    {integer("L2 Cache Type", "20"), "L2CacheType", "uint:20"},
    {integer("L2 Cache Configuration", "21"), "L2CacheConfig", "uint:21"},
    {integer("L3 Cache Maximum Size", "22"), "L3CacheMaxSize", "uint:22"},
    {integer("L3 Cache Installed Size", "23"), "L3CacheInstalled", "uint:23"},
    {integer("L3 Cache Type", "24"), "L3CacheType", "uint:24"},
    {integer("L3 Cache Configuration", "25"), "L3CacheConfig", "uint:25"},
};

class ProcessorRecord : public testing::Test {
protected:
    ProcessorRecord() { parser.init(); }

    int write(const std::vector<setting>& settings) {
        const std::unique_ptr<cds_parser::component> processor(make_component("cpu_info", settings));
        return parser.parse_processor(platform.handle(), processor.get());
    }

    recording_platform platform;
    cds_parser::parser parser;
};

}  // namespace

TEST_F(ProcessorRecord, PutsEveryColumnInOrder) {
    parser.node_index = 2;
    ASSERT_EQ(write(settings_of(processor_columns)), 1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0].table, "Processor");
    EXPECT_EQ(platform.rows[0].columns, columns_of({{"NodeIndex", "uint:2"}}, processor_columns));
}

TEST_F(ProcessorRecord, PutsOnlyTheColumnOfAnOnlySetting) {
    for (const expected_column& expected : processor_columns) {
        SCOPED_TRACE(expected.column);
        platform.rows.clear();
        ASSERT_EQ(write({expected.given}), 1);
        ASSERT_EQ(platform.rows.size(), 1u);
        EXPECT_EQ(platform.rows[0].columns, columns_of({{"NodeIndex", "uint:4294967295"}}, {expected}));
    }
}

TEST_F(ProcessorRecord, WithoutAKnownSettingLeavesNoRowAndSucceedsWithTheFirstColumnPut) {
    platform.calls.clear();
    EXPECT_EQ(write({integer("Frobnication", "8")}), 1);
    EXPECT_THAT(platform.calls, ElementsAre("zeb_db_content_clear", "zeb_db_content_put_uint NodeIndex 4294967295"));
}

TEST_F(ProcessorRecord, EmptiesTheBufferPutsAndInsertsInThatOrder) {
    platform.calls.clear();
    ASSERT_EQ(write({integer("Core Count", "8"), text("Socket Designation", "CPU 1")}), 1);
    EXPECT_THAT(platform.calls, ElementsAre("zeb_db_content_clear", "zeb_db_content_put_uint NodeIndex 4294967295",
                                            "zeb_db_content_put_text Socket CPU 1",
                                            "zeb_db_content_put_uint CoreCount 8", "zeb_db_insert Processor"));
}

TEST_F(ProcessorRecord, ReadsTheFirstOfSeveralGroups) {
    const std::unique_ptr<cds_parser::component> processor(make_component("cpu_info", {integer("Core Count", "1")}));
    processor->add_setting_group(make_group("cpu_info", {integer("Core Count", "2")}));
    ASSERT_EQ(parser.parse_processor(platform.handle(), processor.get()), 1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0]["CoreCount"], "uint:1");
}

TEST_F(ProcessorRecord, KeepsAllBitsOfTheProcessorIdAndTheLow32OfTheCoreCount) {
    ASSERT_EQ(write({hex("Processor ID", "0x000806F8BFEBFBFF"), hex("Core Count", "0x100000001")}), 1);
    EXPECT_EQ(platform.rows.at(0)["ProcId"], "uint64:" + std::to_string(0x000806F8BFEBFBFF));
    EXPECT_EQ(platform.rows.at(0)["CoreCount"], "uint:1");
}

TEST_F(ProcessorRecord, TakesTextAsItIsAndNonNumericValuesOfNumbersAsZero) {
    ASSERT_EQ(write({text("Processor Version", " two  blanks "), text("Core Count", "8"), text("Processor ID", "9")}),
              1);
    EXPECT_EQ(platform.rows.at(0)["Version"], "text: two  blanks ");
    EXPECT_EQ(platform.rows.at(0)["ProcId"], "uint64:0");
    EXPECT_EQ(platform.rows.at(0)["CoreCount"], "uint:0");
}

TEST_F(ProcessorRecord, CarriesNodeIndexMinusOneBeforeAnyMainServer) {
    ASSERT_EQ(write({integer("Core Count", "8")}), 1);
    EXPECT_EQ(platform.rows.at(0)["NodeIndex"], "uint:4294967295");
}

TEST_F(ProcessorRecord, KeepsTheIdOfTheNewRow) {
    platform.next_row_id = 77;
    ASSERT_EQ(write({integer("Core Count", "8")}), 1);
    EXPECT_EQ(parser.last_row_id, 77);
}

TEST_F(ProcessorRecord, LogsAnErrorWhenTheInsertFails) {
    platform.fail("zeb_db_insert", 5);
    EXPECT_EQ(write({text("Socket Designation", "CPU 1")}), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: failed to insert Processor (CPU 1), rc=5"));
}

TEST_F(ProcessorRecord, LogsAnEmptySocketWhenTheFailingProcessorHasNone) {
    platform.fail("zeb_db_insert", -5);
    EXPECT_EQ(write({integer("Core Count", "8")}), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: failed to insert Processor (), rc=-5"));
}

TEST_F(ProcessorRecord, IsInsertedEvenIfNoColumnCanBePut) {
    platform.fail("zeb_db_content_put_text");
    platform.fail("zeb_db_content_put_uint");
    platform.fail("zeb_db_content_put_uint64");
    EXPECT_EQ(write(settings_of(processor_columns)), 1);
    EXPECT_EQ(platform.count("zeb_db_insert"), 1u);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(ProcessorRecord, FailsSilentlyWithoutItsGroup) {
    platform.calls.clear();
    cds_parser::component other(0);
    EXPECT_EQ(parser.parse_processor(platform.handle(), &other), 0);
    EXPECT_THAT(platform.calls, IsEmpty());
}
