// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <optional>
#include <string>
#include <vector>

#include "inventory/input_files.h"
#include "inventory/short_reads.h"
#include "support/recording_platform.h"
#include "support/sandboxed_test.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr const char* first_command = "popen sha384sum /tmp/first.xml | awk '{ print $1 }' for r";
constexpr const char* second_command = "popen sha384sum /tmp/second.xml | awk '{ print $1 }' for r";

}  // namespace

// Two unchanged files, and key files that each test writes; a file of n keys has its first n - 1 keys tested.
class CheckPci : public sandboxed_test {
protected:
    CheckPci() { platform.run_commands(); }

    void SetUp() override {
        sandboxed_test::SetUp();
        write_file(first_input, "first");
        write_file(second_input, "second");
        ASSERT_EQ(save_pci_digest(first_input, second_input), 0);
        platform.calls.clear();
    }

    int check() { return check_pci(first_input, second_input, &changed); }

    int changed = 77;
    recording_platform platform;
};

TEST_F(CheckPci, RunsEveryStepInOrderAndFindsNoChange) {
    write_file(place::pci_keys, words({2, 7, 9}));
    write_file(place::adapter_keys, words({2, 11, 13}));
    platform.query_rows = {{"PCIs", {{7}, {9}}}, {"PCIAdapter", {{11}}}};
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
    EXPECT_THAT(
        platform.calls,
        ElementsAre(first_command, second_command, "get_dmdb_handle", "zebdb_get_pldm_firmware_pending_list 0 null",
                    "zeb_db_query PCIs FunKey", "zeb_db_result_step PCIs", "zeb_db_result_column_uint PCIs 0",
                    "zeb_db_result_step PCIs", "zeb_db_result_column_uint PCIs 0", "zeb_db_result_step PCIs",
                    "zeb_db_free_result PCIs", "zeb_db_query PCIAdapter PCIFuncKey", "zeb_db_result_step PCIAdapter",
                    "zeb_db_result_column_uint PCIAdapter 0", "zeb_db_result_step PCIAdapter",
                    "zeb_db_free_result PCIAdapter", "rebuild_tables_in_memory"));
}

TEST_F(CheckPci, EndsAtAChangedFirstFile) {
    write_file(first_input, "changed");
    std::filesystem::remove(second_input);
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_THAT(platform.calls, ElementsAre(first_command, StartsWith("INFO: check_file_digest: /tmp/first.xml ")));
}

TEST_F(CheckPci, EndsAtAChangedSecondFileWithoutTouchingTheDatabase) {
    write_file(second_input, "changed");
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_THAT(platform.calls,
                ElementsAre(first_command, second_command, StartsWith("INFO: check_file_digest: /tmp/second.xml ")));
}

TEST_F(CheckPci, FailsAtAFirstFileThatCannotBeCompared) {
    std::filesystem::remove(first_input);
    EXPECT_EQ(check(), -1);
    EXPECT_EQ(changed, 77);
    EXPECT_THAT(platform.calls, ElementsAre("ERROR: check_file_digest: /tmp/first.xml does not exist"));
}

TEST_F(CheckPci, FailsAtASecondFileThatCannotBeCompared) {
    std::filesystem::remove("/tmp/second.xml.digest");
    EXPECT_EQ(check(), -1);
    EXPECT_EQ(changed, 0);
    EXPECT_THAT(platform.calls, ElementsAre(first_command, second_command,
                                            "ERROR: check_file_digest: open /tmp/second.xml.digest failed"));
}

TEST_F(CheckPci, FailsWithoutAHandle) {
    platform.fail("get_dmdb_handle");
    EXPECT_EQ(check(), -1);
    EXPECT_THAT(platform.calls, ElementsAre(first_command, second_command, "get_dmdb_handle",
                                            "ERROR: check_pci: unable to get dmdb handle"));
}

TEST_F(CheckPci, TakesPendingFirmwareForAChangeAndGoesOn) {
    write_file(place::pci_keys, words({2, 7, 9}));
    write_file(place::adapter_keys, words({2, 7, 9}));
    platform.query_rows = {{"PCIs", {{7}}}, {"PCIAdapter", {{7}}}};
    platform.pending_firmware = 3;
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_THAT(platform.calls_of("zeb_db_query"),
                ElementsAre("zeb_db_query PCIs FunKey", "zeb_db_query PCIAdapter PCIFuncKey"));
    EXPECT_EQ(platform.count("rebuild_tables_in_memory"), 1u);
}

TEST_F(CheckPci, IgnoresAPendingListThatCannotBeRead) {
    write_file(place::adapter_keys, words({1, 7}));
    platform.pending_firmware = 3;
    platform.fail("zebdb_get_pldm_firmware_pending_list");
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
    EXPECT_EQ(platform.count("rebuild_tables_in_memory"), 1u);
}

TEST_F(CheckPci, FindsAVanishedPciKeyAndGoesOn) {
    write_file(place::pci_keys, words({3, 7, 9, 11}));
    write_file(place::adapter_keys, words({2, 7, 9}));
    platform.query_rows = {{"PCIs", {{7}, {11}}}, {"PCIAdapter", {{7}}}};
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(platform.count("rebuild_tables_in_memory"), 1u);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(CheckPci, FindsAVanishedAdapterKey) {
    write_file(place::pci_keys, words({2, 7, 9}));
    write_file(place::adapter_keys, words({3, 7, 9, 11}));
    platform.query_rows = {{"PCIs", {{7}}}, {"PCIAdapter", {{9}, {11}}}};
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(platform.count("rebuild_tables_in_memory"), 1u);
}

TEST_F(CheckPci, FindsEveryKeyVanishedFromAnEmptyDatabase) {
    write_file(place::pci_keys, words({2, 7, 9}));
    write_file(place::adapter_keys, words({1, 7}));
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
}

TEST_F(CheckPci, NeverTestsTheLastKeyOfAFile) {
    write_file(place::pci_keys, words({3, 7, 9, 11}));
    write_file(place::adapter_keys, words({2, 7, 9}));
    platform.query_rows = {{"PCIs", {{7}, {9}}}, {"PCIAdapter", {{7}}}};
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
}

TEST_F(CheckPci, DoesNotReportAKeyThatCame) {
    write_file(place::pci_keys, words({2, 7, 9}));
    write_file(place::adapter_keys, words({2, 7, 9}));
    platform.query_rows = {{"PCIs", {{7}, {8}, {9}, {10}}}, {"PCIAdapter", {{6}, {7}, {9}}}};
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
}

TEST_F(CheckPci, DoesNotReportAnotherOrderOrNumberOfKeys) {
    write_file(place::pci_keys, words({5, 7, 9, 7, 11, 9}));
    write_file(place::adapter_keys, words({2, 7, 9}));
    platform.query_rows = {{"PCIs", {{11}, {9}, {7}}}, {"PCIAdapter", {{9}, {7}, {7}}}};
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
}

TEST_F(CheckPci, DoesNotMixTheTwoSetsOfKeys) {
    write_file(place::pci_keys, words({2, 7, 9}));
    write_file(place::adapter_keys, words({2, 11, 13}));
    platform.query_rows = {{"PCIs", {{7}, {11}}}, {"PCIAdapter", {{7}}}};
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
}

TEST_F(CheckPci, DoesNotCarryPciKeysIntoTheAdapterTest) {
    write_file(place::pci_keys, words({2, 7, 9}));
    write_file(place::adapter_keys, words({2, 11, 13}));
    platform.query_rows = {{"PCIs", {{7}}}, {"PCIAdapter", {{11}}}};
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
}

TEST_F(CheckPci, CountsADatabaseKeyThatCannotBeReadAsZero) {
    write_file(place::pci_keys, words({2, 0, 9}));
    write_file(place::adapter_keys, words({2, 0, 9}));
    platform.query_rows = {{"PCIs", {{std::nullopt}}}, {"PCIAdapter", {{std::nullopt}}}};
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
}

TEST_F(CheckPci, GoesOnWithoutAPciKeyFile) {
    write_file(place::adapter_keys, words({1, 7}));
    platform.query_rows = {{"PCIs", {{7}}}};
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
    EXPECT_EQ(platform.count("rebuild_tables_in_memory"), 1u);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(CheckPci, GoesOnWithAnEmptyPciKeyFile) {
    write_file(place::pci_keys, "");
    write_file(place::adapter_keys, words({1, 7}));
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
}

TEST_F(CheckPci, GoesOnWhenThePciKeyFileCannotBeRead) {
    write_file(place::pci_keys, words({2, 7, 9}));
    const short_reads reads(place::pci_keys);
    write_file(place::adapter_keys, words({1, 7}));
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
    EXPECT_EQ(platform.count("rebuild_tables_in_memory"), 1u);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: read_fkeys_fromFile: reading /var/DS/pci_inventory.fkey failed!"));
}

TEST_F(CheckPci, GoesOnWithADirectoryInThePlaceOfThePciKeyFile) {
    make_directory(place::pci_keys);
    write_file(place::adapter_keys, words({1, 7}));
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
    EXPECT_EQ(platform.count("rebuild_tables_in_memory"), 1u);
}

TEST_F(CheckPci, GoesOnWhenThePciQueryFails) {
    write_file(place::pci_keys, words({2, 7, 9}));
    write_file(place::adapter_keys, words({1, 7}));
    platform.fail_once("zeb_db_query", 1);
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
    EXPECT_EQ(platform.count("rebuild_tables_in_memory"), 1u);
}

TEST_F(CheckPci, ReleasesTheResultOfAFailedPciQuery) {
    write_file(place::adapter_keys, words({1, 7}));
    platform.fail_once("zeb_db_query", 1);
    platform.failing_queries_with_result = {"PCIs"};
    EXPECT_EQ(check(), 0);
    EXPECT_THAT(platform.calls_of("zeb_db_free_result"),
                ElementsAre("zeb_db_free_result PCIs", "zeb_db_free_result PCIAdapter"));
}

TEST_F(CheckPci, DoesNotReadThePciKeyFileWhenThePciQueryFails) {
    write_file(place::pci_keys, words({2, 7, 9}));
    const short_reads reads(place::pci_keys);
    write_file(place::adapter_keys, words({1, 7}));
    platform.fail_once("zeb_db_query", 1);
    EXPECT_EQ(check(), 0);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(CheckPci, FindsSavedKeysVanishedWhenTheQueryGivesNoResult) {
    write_file(place::pci_keys, words({2, 7, 9}));
    write_file(place::adapter_keys, words({1, 7}));
    platform.query_rows = {{"PCIs", {{7}}}};
    platform.queries_without_result = {"PCIs"};
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
}

TEST_F(CheckPci, FailsWithoutARebuildWhenTheAdapterQueryFails) {
    write_file(place::adapter_keys, words({1, 7}));
    platform.fail_once("zeb_db_query", 2);
    EXPECT_EQ(check(), -1);
    EXPECT_EQ(platform.count("rebuild_tables_in_memory"), 0u);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(CheckPci, ReleasesTheResultOfAFailedAdapterQuery) {
    write_file(place::adapter_keys, words({1, 7}));
    platform.fail_once("zeb_db_query", 2);
    platform.failing_queries_with_result = {"PCIAdapter"};
    EXPECT_EQ(check(), -1);
    EXPECT_EQ(platform.calls.back(), "zeb_db_free_result PCIAdapter");
}

TEST_F(CheckPci, DoesNotReadTheAdapterKeyFileWhenTheAdapterQueryFails) {
    write_file(place::adapter_keys, words({1, 7}));
    const short_reads reads(place::adapter_keys);
    platform.fail_once("zeb_db_query", 2);
    EXPECT_EQ(check(), -1);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(CheckPci, FailsWithoutARebuildWhenTheAdapterKeyFileIsMissing) {
    EXPECT_EQ(check(), -1);
    EXPECT_EQ(platform.calls.back(), "zeb_db_free_result PCIAdapter");
    EXPECT_EQ(platform.count("rebuild_tables_in_memory"), 0u);
}

TEST_F(CheckPci, KeepsTheChangeItFoundWhenItFailsLater) {
    write_file(place::pci_keys, words({2, 7, 9}));
    EXPECT_EQ(check(), -1);
    EXPECT_EQ(changed, 1);
}

TEST_F(CheckPci, IgnoresARebuildThatFails) {
    write_file(place::adapter_keys, words({1, 7}));
    platform.fail("rebuild_tables_in_memory");
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
}

TEST_F(CheckPci, AgreesWithTheRefreshThatCameBefore) {
    platform.query_rows = {{"PCIs", {{7}, {9}, {11}}}, {"PCIAdapter", {{7}, {11}}}};
    ASSERT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
}
