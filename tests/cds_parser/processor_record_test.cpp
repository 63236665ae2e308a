#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <memory>

#include "support/recording_platform.h"
#include "support/tree_builder.h"

using testing::ElementsAre;
using testing::IsEmpty;

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

TEST_F(ProcessorRecord, PutsEveryColumnInOrder) {
    std::vector<setting> settings = {
        text("Socket Designation", "CPU 1"),
        integer("Processor Type", "1"),
        integer("Processor Family", "2"),
        text("Processor Manufacturer", "Maker"),
        integer("Processor ID", "3"),
        text("Processor Version", "Version"),
        integer("Voltage", "4"),
        integer("External Clock", "5"),
        integer("Max Speed", "6"),
        integer("Current Speed", "7"),
        integer("Status", "8"),
        integer("Processor Upgrade", "9"),
        text("Serial Number", "Serial"),
        text("Asset Tag", "Tag"),
        text("Part Number", "Part"),
        integer("Core Count", "10"),
        integer("Core Enabled", "11"),
        integer("Thread Count", "12"),
        integer("Processor Characteristics", "13"),
        integer("L1 Cache Maximum Size", "14"),
        integer("L1 Cache Installed Size", "15"),
        integer("L1 Cache Type", "16"),
        integer("L1 Cache Configuration", "17"),
        integer("L2 Cache Maximum Size", "18"),
        integer("L2 Cache Installed Size", "19"),
        integer("L2 Cache Type", "20"),
        integer("L2 Cache Configuration", "21"),
        integer("L3 Cache Maximum Size", "22"),
        integer("L3 Cache Installed Size", "23"),
        integer("L3 Cache Type", "24"),
        integer("L3 Cache Configuration", "25"),
    };

    parser.node_index = 2;
    ASSERT_EQ(write(settings), 1);

    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0].table, "Processor");
    using entry = std::pair<std::string, std::string>;
    EXPECT_THAT(
        platform.rows[0].columns,
        ElementsAre(
            entry("NodeIndex", "uint:2"), entry("Socket", "text:CPU 1"), entry("ProcType", "uint:1"),
            entry("Family", "uint:2"), entry("Manufacturer", "text:Maker"), entry("ProcId", "uint64:3"),
            entry("Version", "text:Version"), entry("Voltage", "uint:4"), entry("ExtClock", "uint:5"),
            entry("MaxSpeed", "uint:6"), entry("CurSpeed", "uint:7"), entry("Status", "uint:8"),
            entry("Upgrade", "uint:9"), entry("SerialNo", "text:Serial"), entry("AssetTag", "text:Tag"),
            entry("PartNo", "text:Part"), entry("CoreCount", "uint:10"), entry("CoreEnabled", "uint:11"),
            entry("ThreadCount", "uint:12"), entry("Characteristics", "uint:13"), entry("L1CacheMaxSize", "uint:14"),
            entry("L1CacheInstalled", "uint:15"), entry("L1CacheType", "uint:16"), entry("L1CacheConfig", "uint:17"),
            entry("L2CacheMaxSize", "uint:18"), entry("L2CacheInstalled", "uint:19"), entry("L2CacheType", "uint:20"),
            entry("L2CacheConfig", "uint:21"), entry("L3CacheMaxSize", "uint:22"), entry("L3CacheInstalled", "uint:23"),
            entry("L3CacheType", "uint:24"), entry("L3CacheConfig", "uint:25")));
}

TEST_F(ProcessorRecord, LeavesOutTheColumnsOfAbsentSettings) {
    ASSERT_EQ(write({integer("Core Count", "8")}), 1);
    EXPECT_THAT(platform.rows.at(0).column_names(), ElementsAre("NodeIndex", "CoreCount"));
}

TEST_F(ProcessorRecord, WithoutAKnownSettingLeavesNoRowAndSucceeds) {
    EXPECT_EQ(write({integer("Frobnication", "8")}), 1);
    EXPECT_THAT(platform.rows, IsEmpty());
}

TEST_F(ProcessorRecord, KeepsAllBitsOfTheProcessorIdAndTheLow32OfTheCoreCount) {
    ASSERT_EQ(write({hex("Processor ID", "0x000806F8BFEBFBFF"), hex("Core Count", "0x100000001")}), 1);
    EXPECT_EQ(platform.rows.at(0)["ProcId"], "uint64:" + std::to_string(0x000806F8BFEBFBFF));
    EXPECT_EQ(platform.rows.at(0)["CoreCount"], "uint:1");
}

TEST_F(ProcessorRecord, TakesTextAsItIsAndNonNumericValuesOfNumbersAsZero) {
    ASSERT_EQ(write({text("Processor Version", " two  blanks "), text("Core Count", "8")}), 1);
    EXPECT_EQ(platform.rows.at(0)["Version"], "text: two  blanks ");
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
    platform.fail("zeb_db_insert", 5);
    EXPECT_EQ(write({integer("Core Count", "8")}), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: failed to insert Processor (), rc=5"));
}

TEST_F(ProcessorRecord, FailsSilentlyWithoutItsGroup) {
    cds_parser::component other(0);
    EXPECT_EQ(parser.parse_processor(platform.handle(), &other), 0);
    EXPECT_THAT(platform.log, IsEmpty());
    EXPECT_THAT(platform.rows, IsEmpty());
}
