// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "support/recording_platform.h"
#include "support/sandboxed_test.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* query = "zeb_db_query PCIBridge BusNo,DevNo,FunNo where VendorId=6659 AND DevId=4432";

std::string bytes(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values) {
        text += static_cast<char>(value);
    }
    return text;
}

std::string change(const std::string& current, const std::string& previous) {
    return "INFO: update BMC address, current BDF " + current + " from database, previous BDF " + previous +
           " from file /var/log/bmc_bdf.bin\n";
}

}  // namespace

class UpdateBmcAddress : public sandboxed_test {
protected:
    using column = std::optional<std::uint32_t>;

    void set_database(column bus, column device, column function) {
        platform.query_rows["PCIBridge"] = {{bus, device, function}};
    }

    recording_platform platform;
};

TEST_F(UpdateBmcAddress, WritesAChangedAddressAndLogsBoth) {
    write_file(place::bmc_address, bytes({0x1F, 0xE, 0xD}));
    set_database(0xAB, 0xC, 2);
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(content_of(place::bmc_address), bytes({0xAB, 0xC, 2}));
    EXPECT_THAT(
        platform.calls,
        ElementsAre("get_dmdb_handle", query, "zeb_db_result_step PCIBridge", "zeb_db_result_column_uint PCIBridge 0",
                    "zeb_db_result_column_uint PCIBridge 1", "zeb_db_result_column_uint PCIBridge 2",
                    "zeb_db_free_result PCIBridge", change("0xab 0xc 0x2", "0x1f 0xe 0xd")));
}

TEST_F(UpdateBmcAddress, Gives3AndWritesNothingForTheAddressOnRecord) {
    write_file(place::bmc_address, bytes({0xAB, 0xC, 2}));
    const auto long_ago = std::filesystem::last_write_time(place::bmc_address) - std::chrono::hours(24);
    std::filesystem::last_write_time(place::bmc_address, long_ago);
    set_database(0xAB, 0xC, 2);
    EXPECT_EQ(update_bmc_addr(), 3);
    EXPECT_EQ(content_of(place::bmc_address), bytes({0xAB, 0xC, 2}));
    EXPECT_TRUE(std::filesystem::last_write_time(place::bmc_address) == long_ago);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(UpdateBmcAddress, SeesAChangeInEachByte) {
    set_database(1, 2, 3);
    for (const std::string& previous : {bytes({0, 2, 3}), bytes({1, 0, 3}), bytes({1, 2, 0})}) {
        write_file(place::bmc_address, previous);
        EXPECT_EQ(update_bmc_addr(), 0);
        EXPECT_EQ(content_of(place::bmc_address), bytes({1, 2, 3}));
    }
}

TEST_F(UpdateBmcAddress, MakesAMissingFileAndLogsZerosAsThePreviousAddress) {
    set_database(1, 2, 3);
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(content_of(place::bmc_address), bytes({1, 2, 3}));
    EXPECT_THAT(platform.log, ElementsAre(change("0x1 0x2 0x3", "0x0 0x0 0x0")));
}

TEST_F(UpdateBmcAddress, MakesAMissingFileForTheAddressZeroToo) {
    set_database(0, 0, 0);
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(content_of(place::bmc_address), bytes({0, 0, 0}));
    EXPECT_THAT(platform.log, ElementsAre(change("0x0 0x0 0x0", "0x0 0x0 0x0")));
}

TEST_F(UpdateBmcAddress, RecordsTheLowByteOfEachNumber) {
    set_database(0x112, 0xFFFFFFFF, 0x80000300);
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(content_of(place::bmc_address), bytes({0x12, 0xFF, 0}));
    EXPECT_THAT(platform.log, ElementsAre(change("0x12 0xff 0x0", "0x0 0x0 0x0")));
}

TEST_F(UpdateBmcAddress, CountsEachColumnThatCannotBeReadAsZero) {
    set_database(std::nullopt, 2, 3);
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(content_of(place::bmc_address), bytes({0, 2, 3}));
    set_database(1, std::nullopt, 3);
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(content_of(place::bmc_address), bytes({1, 0, 3}));
    set_database(1, 2, std::nullopt);
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(content_of(place::bmc_address), bytes({1, 2, 0}));
}

TEST_F(UpdateBmcAddress, UsesTheFirstRowOnly) {
    platform.query_rows["PCIBridge"] = {{1, 2, 3}, {4, 5, 6}};
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(content_of(place::bmc_address), bytes({1, 2, 3}));
    EXPECT_EQ(platform.count("zeb_db_result_step"), 1u);
}

TEST_F(UpdateBmcAddress, ReleasesTheResultBeforeItTouchesTheFile) {
    set_database(1, 2, 3);
    bool released = false;
    platform.at_call = [&](const std::string& call) {
        if (call == "zeb_db_free_result PCIBridge") {
            released = true;
            EXPECT_FALSE(exists(place::bmc_address));
        }
    };
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_TRUE(released);
}

TEST_F(UpdateBmcAddress, LogsWhenTheFileIsWritten) {
    set_database(1, 2, 3);
    std::string written_by_then;
    platform.at_call = [&](const std::string& call) {
        if (call == change("0x1 0x2 0x3", "0x0 0x0 0x0")) {
            written_by_then = content_of(place::bmc_address);
        }
    };
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(written_by_then, bytes({1, 2, 3}));
}

TEST_F(UpdateBmcAddress, Gives6WithoutAHandle) {
    platform.fail("get_dmdb_handle");
    EXPECT_EQ(update_bmc_addr(), 6);
    EXPECT_THAT(platform.calls, ElementsAre("get_dmdb_handle"));
}

TEST_F(UpdateBmcAddress, GivesTheCodeOfAFailedQuery) {
    platform.fail("zeb_db_query", 14);
    EXPECT_EQ(update_bmc_addr(), 14);
    EXPECT_THAT(platform.calls, ElementsAre("get_dmdb_handle", query));
}

TEST_F(UpdateBmcAddress, ReleasesTheResultOfAFailedQueryWithoutReadingIt) {
    platform.fail("zeb_db_query", 9);
    platform.failing_queries_with_result = {"PCIBridge"};
    set_database(1, 2, 3);
    EXPECT_EQ(update_bmc_addr(), 9);
    EXPECT_THAT(platform.calls, ElementsAre("get_dmdb_handle", query, "zeb_db_free_result PCIBridge"));
    EXPECT_FALSE(exists(place::bmc_address));
}

TEST_F(UpdateBmcAddress, GivesZeroWhenTheQueryGivesNoResult) {
    platform.queries_without_result = {"PCIBridge"};
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_THAT(platform.calls, ElementsAre("get_dmdb_handle", query));
    EXPECT_FALSE(exists(place::bmc_address));
}

TEST_F(UpdateBmcAddress, GivesTheStepCodeAndLeavesTheFileWithoutABridge) {
    write_file(place::bmc_address, bytes({1, 2, 3}));
    for (const int code : {101, 100, 8, 10, 0, -1}) {
        platform.calls.clear();
        platform.end_of_rows = code;
        EXPECT_EQ(update_bmc_addr(), code);
        EXPECT_THAT(platform.calls, ElementsAre("get_dmdb_handle", query, "zeb_db_result_step PCIBridge",
                                                "zeb_db_free_result PCIBridge"));
    }
    EXPECT_EQ(content_of(place::bmc_address), bytes({1, 2, 3}));
}

TEST_F(UpdateBmcAddress, Gives1ForAOneByteFileWhoseMissingBytesAreZeroInTheDatabase) {
    write_file(place::bmc_address, bytes({0x12}));
    set_database(0x12, 0, 0);
    EXPECT_EQ(update_bmc_addr(), 1);
    EXPECT_EQ(content_of(place::bmc_address), bytes({0x12}));
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(UpdateBmcAddress, Gives2ForATwoByteFileWhoseMissingByteIsZeroInTheDatabase) {
    write_file(place::bmc_address, bytes({0x12, 3}));
    set_database(0x12, 3, 0);
    EXPECT_EQ(update_bmc_addr(), 2);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(UpdateBmcAddress, GivesZeroAndWritesNothingForAnEmptyFileAndTheAddressZero) {
    write_file(place::bmc_address, "");
    set_database(0, 0, 0);
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(content_of(place::bmc_address), "");
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(UpdateBmcAddress, FillsAShortFileUpAndLogsItsMissingBytesAsZero) {
    write_file(place::bmc_address, bytes({0x12}));
    set_database(0x12, 3, 4);
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(content_of(place::bmc_address), bytes({0x12, 3, 4}));
    EXPECT_THAT(platform.log, ElementsAre(change("0x12 0x3 0x4", "0x12 0x0 0x0")));
}

TEST_F(UpdateBmcAddress, ReadsTheFirstThreeBytesOfALongerFile) {
    write_file(place::bmc_address, bytes({1, 2, 3, 4, 5}));
    set_database(1, 2, 3);
    EXPECT_EQ(update_bmc_addr(), 3);
    EXPECT_EQ(content_of(place::bmc_address), bytes({1, 2, 3, 4, 5}));
}

TEST_F(UpdateBmcAddress, CutsALongerFileToTheNewAddress) {
    write_file(place::bmc_address, bytes({1, 2, 3, 4, 5}));
    set_database(1, 2, 4);
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_EQ(content_of(place::bmc_address), bytes({1, 2, 4}));
}

TEST_F(UpdateBmcAddress, GivesTheBytesReadWhenTheFileCannotBeWritten) {
    make_read_only(place::bmc_address, bytes({1, 2, 3}));
    set_database(4, 5, 6);
    EXPECT_EQ(update_bmc_addr(), 3);
    EXPECT_EQ(content_of(place::bmc_address), bytes({1, 2, 3}));
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(UpdateBmcAddress, GivesTheBytesReadOfAShortFileThatCannotBeWritten) {
    make_read_only(place::bmc_address, bytes({1}));
    set_database(4, 5, 6);
    EXPECT_EQ(update_bmc_addr(), 1);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(UpdateBmcAddress, GivesZeroWithADirectoryInTheFilesPlace) {
    make_directory(place::bmc_address);
    set_database(4, 5, 6);
    EXPECT_EQ(update_bmc_addr(), 0);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(UpdateBmcAddress, Gives9WhenTheFileCanNeitherBeReadNorWritten) {
    make_folder_missing(place::bmc_address);
    set_database(4, 5, 6);
    EXPECT_EQ(update_bmc_addr(), 9);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(UpdateBmcAddress, GivesMinus1AndLogsTheChangeOnAFullDisk) {
    set_database(4, 5, 6);
    {
        const file_size_limit full(0);
        EXPECT_EQ(update_bmc_addr(), -1);
    }
    EXPECT_EQ(content_of(place::bmc_address), "");
    EXPECT_THAT(platform.log, ElementsAre(change("0x4 0x5 0x6", "0x0 0x0 0x0")));
}
