// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zebdb_cds_parser.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "inventory/short_reads.h"
#include "support/failing_calloc.h"
#include "support/recording_platform.h"
#include "support/sandboxed_test.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

using keys = std::vector<std::uint32_t>;

std::vector<std::vector<std::optional<std::uint32_t>>> rows_of(const keys& numbers) {
    std::vector<std::vector<std::optional<std::uint32_t>>> rows;
    for (const std::uint32_t number : numbers) {
        rows.push_back({number});
    }
    return rows;
}

keys numbers_up_to(std::size_t count) {
    keys numbers(count);
    std::iota(numbers.begin(), numbers.end(), 1);
    return numbers;
}

}  // namespace

// A refresh writes the key files; it loads no CDS file here.
class SaveFunctionKeys : public sandboxed_test {
protected:
    void save(const keys& pci_keys) {
        platform.query_rows["PCIs"] = rows_of(pci_keys);
        save();
    }

    void save() { EXPECT_EQ(parse_pci(nullptr, 0), 0); }

    recording_platform platform;
};

TEST_F(SaveFunctionKeys, WritesTheCountAndTheKeys) {
    save({7, 9, 11});
    EXPECT_EQ(content_of(place::pci_keys), words({3, 7, 9, 11}));
    EXPECT_EQ(content_of(place::pci_keys).size(), 16u);
    EXPECT_THAT(platform.log,
                Contains("INFO: save_fkeys_ToFile: 3 function keys are saved into /var/DS/pci_inventory.fkey"));
}

TEST_F(SaveFunctionKeys, WritesTheAdapterKeysToTheirOwnFile) {
    platform.query_rows["PCIs"] = rows_of({7, 9, 11});
    platform.query_rows["PCIAdapter"] = rows_of({7});
    save();
    EXPECT_EQ(content_of(place::pci_keys), words({3, 7, 9, 11}));
    EXPECT_EQ(content_of(place::adapter_keys), words({1, 7}));
    EXPECT_THAT(platform.log,
                Contains("INFO: save_fkeys_ToFile: 1 function keys are saved into /var/DS/inventory.fkey"));
}

TEST_F(SaveFunctionKeys, KeepsTheOrderAndDuplicatesOfTheRows) {
    save({9, 7, 9, 0xFFFFFFFF, 0});
    EXPECT_EQ(content_of(place::pci_keys), words({5, 9, 7, 9, 0xFFFFFFFF, 0}));
}

TEST_F(SaveFunctionKeys, SavesZeroForAValueThatCannotBeRead) {
    platform.query_rows["PCIs"] = {{7}, {std::nullopt}, {9}};
    save();
    EXPECT_EQ(content_of(place::pci_keys), words({3, 7, 0, 9}));
}

TEST_F(SaveFunctionKeys, ReplacesALongerFile) {
    write_file(place::pci_keys, std::string(100, 'x'));
    save({7});
    EXPECT_EQ(content_of(place::pci_keys), words({1, 7}));
}

TEST_F(SaveFunctionKeys, WritesManyKeys) {
    const keys many = numbers_up_to(10000);
    save(many);
    EXPECT_EQ(content_of(place::pci_keys), words({10000}) + words(many));
}

TEST_F(SaveFunctionKeys, MakesNoFileWithoutKeys) {
    save({});
    EXPECT_FALSE(exists(place::pci_keys));
    EXPECT_THAT(platform.log, Not(Contains(testing::HasSubstr("save_fkeys_ToFile"))));
}

TEST_F(SaveFunctionKeys, LeavesTheFileAsItIsWithoutKeys) {
    write_file(place::pci_keys, "older");
    save({});
    EXPECT_EQ(content_of(place::pci_keys), "older");
}

TEST_F(SaveFunctionKeys, LeavesTheFileAsItIsWhenTheQueryFails) {
    write_file(place::pci_keys, "older");
    platform.fail_once("zeb_db_query", 1);
    save({7});
    EXPECT_EQ(content_of(place::pci_keys), "older");
    EXPECT_THAT(platform.calls_of("zeb_db_free_result"), ElementsAre("zeb_db_free_result PCIAdapter"));
}

TEST_F(SaveFunctionKeys, ReleasesTheResultOfAFailedQueryWithoutReadingIt) {
    write_file(place::pci_keys, "older");
    platform.fail_once("zeb_db_query", 1);
    platform.failing_queries_with_result = {"PCIs"};
    save({7});
    EXPECT_EQ(content_of(place::pci_keys), "older");
    EXPECT_THAT(platform.calls_of("zeb_db_result_step"), ElementsAre("zeb_db_result_step PCIAdapter"));
    EXPECT_THAT(platform.calls_of("zeb_db_free_result"),
                ElementsAre("zeb_db_free_result PCIs", "zeb_db_free_result PCIAdapter"));
}

TEST_F(SaveFunctionKeys, HasNoKeysWhenTheQueryGivesNoResult) {
    write_file(place::pci_keys, "older");
    platform.queries_without_result = {"PCIs"};
    save({7});
    EXPECT_EQ(content_of(place::pci_keys), "older");
    EXPECT_THAT(platform.log, Not(Contains(testing::StartsWith("ERROR"))));
}

TEST_F(SaveFunctionKeys, KeepsTheKeysBeforeAStepThatFails) {
    platform.fail_once("zeb_db_result_step", 3);
    save({7, 9, 11});
    EXPECT_EQ(content_of(place::pci_keys), words({2, 7, 9}));
}

TEST_F(SaveFunctionKeys, TakesEveryStepCodeBut9ForTheEndOfTheRows) {
    for (const int code : {-1, 0, 1, 8, 10, 100, 101}) {
        std::filesystem::remove(place::pci_keys);
        platform.end_of_rows = code;
        save({7, 9});
        EXPECT_EQ(content_of(place::pci_keys), words({2, 7, 9})) << "code " << code;
    }
    EXPECT_THAT(platform.log, Not(Contains(testing::StartsWith("ERROR"))));
}

TEST_F(SaveFunctionKeys, LogsAFileInAMissingFolder) {
    make_folder_missing(place::pci_keys);
    save({7});
    EXPECT_THAT(platform.log, Contains("ERROR: save_fkeys_ToFile: open /var/DS/pci_inventory.fkey failed"));
}

TEST_F(SaveFunctionKeys, LogsADirectoryInTheFilesPlace) {
    make_directory(place::adapter_keys);
    platform.query_rows["PCIAdapter"] = rows_of({7});
    save();
    EXPECT_THAT(platform.log, Contains("ERROR: save_fkeys_ToFile: open /var/DS/inventory.fkey failed"));
}

TEST_F(SaveFunctionKeys, LogsAndKeepsAReadOnlyFile) {
    make_read_only(place::pci_keys, "older");
    save({7});
    EXPECT_EQ(content_of(place::pci_keys), "older");
    EXPECT_THAT(platform.log, Contains("ERROR: save_fkeys_ToFile: open /var/DS/pci_inventory.fkey failed"));
}

TEST_F(SaveFunctionKeys, LogsThatNothingWasWrittenOnAFullDisk) {
    write_file(place::pci_keys, "older");
    {
        const file_size_limit full(0);
        save({7});
    }
    EXPECT_EQ(content_of(place::pci_keys), "");
    EXPECT_THAT(platform.log, Contains("ERROR: save_fkeys_ToFile: write /var/DS/pci_inventory.fkey failed, rc = 0"));
    EXPECT_THAT(platform.log, Not(Contains(testing::HasSubstr("are saved"))));
}

TEST_F(SaveFunctionKeys, LogsHowMuchFittedOnADiskThatFillsUp) {
    {
        const file_size_limit full(4096);
        save(numbers_up_to(1500));
    }
    EXPECT_EQ(content_of(place::pci_keys), (words({1500}) + words(numbers_up_to(1500))).substr(0, 4096));
    EXPECT_THAT(platform.log, Contains("ERROR: save_fkeys_ToFile: write /var/DS/pci_inventory.fkey failed, rc = 4096"));
}

TEST_F(SaveFunctionKeys, SavesTheAdapterKeysAfterTheOtherFileFailed) {
    make_directory(place::pci_keys);
    platform.query_rows["PCIAdapter"] = rows_of({7, 9});
    save({7});
    EXPECT_EQ(content_of(place::adapter_keys), words({2, 7, 9}));
}

TEST_F(SaveFunctionKeys, LeavesTheFileAsItIsWhenMemoryIsOut) {
    write_file(place::pci_keys, "older");
    const failing_calloc no_memory(4 + 4 * 3);
    save({7, 9, 11});
    EXPECT_TRUE(no_memory.fired());
    EXPECT_EQ(content_of(place::pci_keys), "older");
    EXPECT_THAT(platform.log, Not(Contains(testing::HasSubstr("save_fkeys_ToFile"))));
}

// A change test reads the key files. Which keys it takes from a file shows in what the database may lack: the lack of a
// key that was taken is a change.
class ReadFunctionKeys : public sandboxed_test {
protected:
    void SetUp() override {
        sandboxed_test::SetUp();
        write_file(input, "");
        write_file("/tmp/input.xml.digest",
                   "38b060a751ac96384cd9327eb1b1e36a21fdb71114be0743"
                   "4c0cc7bf63f6e1da274edebfe76f65fbd51ad2f14898b95b\n");
        write_file(place::adapter_keys, words({0}));
    }

    int check() { return check_pci(input, input, &changed); }

    // Of the keys 1, 2, 3 and 4, those that are taken from the adapter key file.
    keys taken() {
        keys found;
        for (const std::uint32_t missing : {1U, 2U, 3U, 4U}) {
            keys others = {1, 2, 3, 4};
            others.erase(std::find(others.begin(), others.end(), missing));
            platform.query_rows["PCIAdapter"] = rows_of(others);
            EXPECT_EQ(check(), 0);
            if (changed == 1) {
                found.push_back(missing);
            }
        }
        return found;
    }

    static constexpr const char* input = "/tmp/input.xml";
    int changed = 77;
    recording_platform platform;
};

TEST_F(ReadFunctionKeys, TakesAllButTheLastKeyOfASavedFile) {
    write_file(place::adapter_keys, words({3, 1, 2, 3}));
    EXPECT_THAT(taken(), ElementsAre(1, 2));
}

TEST_F(ReadFunctionKeys, TakesNoKeyOfAFileWithOneKey) {
    write_file(place::adapter_keys, words({1, 1}));
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(ReadFunctionKeys, TakesEveryKeyThatOneByteFollows) {
    write_file(place::adapter_keys, words({3, 1, 2, 3}) + "x");
    EXPECT_THAT(taken(), ElementsAre(1, 2, 3));
}

TEST_F(ReadFunctionKeys, FindsTheFirstKeyMissingBehindOthersThatAreThere) {
    write_file(place::adapter_keys, words({4, 4, 3, 2, 1}));
    EXPECT_THAT(taken(), ElementsAre(2, 3, 4));
}

class KeyFileOfAnySize : public ReadFunctionKeys, public testing::WithParamInterface<std::size_t> {};

// By file size: how many keys have at least one byte of the file behind them.
constexpr std::size_t most_keys[] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3};

// The bytes of a longer file that holds the keys 1 to 4, cut to `size`.
std::string key_file_of_size(std::size_t size, std::uint32_t count) {
    return words({count, 1, 2, 3, 4}).substr(0, size);
}

TEST_P(KeyFileOfAnySize, YieldsAsManyKeysAsItsCountSaysAndItsSizeAllows) {
    const std::size_t size = GetParam();
    for (const std::uint32_t count : {0U, 1U, 2U, 3U, 4U, 5U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        write_file(place::adapter_keys, key_file_of_size(size, count));
        EXPECT_EQ(taken(), numbers_up_to(std::min<std::size_t>(count, most_keys[size]))) << "count " << count;
    }
}

INSTANTIATE_TEST_SUITE_P(Bytes, KeyFileOfAnySize, testing::Range<std::size_t>(1, 18),
                         testing::PrintToStringParamName());

TEST_F(ReadFunctionKeys, FailsOnAnEmptyFile) {
    write_file(place::adapter_keys, "");
    EXPECT_EQ(check(), -1);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(ReadFunctionKeys, FailsSilentlyOnAMissingFile) {
    std::filesystem::remove(place::adapter_keys);
    EXPECT_EQ(check(), -1);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(ReadFunctionKeys, FailsOnADirectoryInTheFilesPlace) {
    std::filesystem::remove(place::adapter_keys);
    make_directory(place::adapter_keys);
    EXPECT_EQ(check(), -1);
}

TEST_F(ReadFunctionKeys, FailsSilentlyOnAPipe) {
    std::filesystem::remove(place::adapter_keys);
    ASSERT_EQ(mkfifo(place::adapter_keys, 0600), 0);
    const int writer = open(place::adapter_keys, O_RDWR);  // else the reader waits for one
    EXPECT_EQ(check(), -1);
    EXPECT_THAT(platform.log, IsEmpty());
    close(writer);
}

TEST_F(ReadFunctionKeys, ReadsAReadOnlyFile) {
    std::filesystem::remove(place::adapter_keys);
    make_read_only(place::adapter_keys, words({3, 1, 2, 3}));
    EXPECT_THAT(taken(), ElementsAre(1, 2));
}

TEST_F(ReadFunctionKeys, LogsAFileThatGivesFewerBytesThanItsSize) {
    write_file(place::adapter_keys, words({3, 1, 2, 3}));
    const short_reads reads(place::adapter_keys);
    EXPECT_EQ(check(), -1);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: read_fkeys_fromFile: reading /var/DS/inventory.fkey failed!"));
}

TEST_F(ReadFunctionKeys, FailsSilentlyWhenMemoryIsOut) {
    write_file(place::adapter_keys, words({3, 1, 2, 3}));
    const failing_calloc no_memory(16);
    EXPECT_EQ(check(), -1);
    EXPECT_TRUE(no_memory.fired());
    EXPECT_THAT(platform.log, IsEmpty());
}
