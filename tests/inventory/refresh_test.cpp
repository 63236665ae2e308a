// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <algorithm>
#include <climits>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "inventory/input_files.h"
#include "support/cds_text.h"
#include "support/recording_platform.h"
#include "support/sandboxed_test.h"

using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

// What a refresh does behind a commit that found nothing in the database, with a digest script that changes nothing.
const std::vector<std::string> calls_after_the_commit = {
    "zeb_db_query PCIs FunKey",           "zeb_db_result_step PCIs",          "zeb_db_free_result PCIs",
    "zeb_db_query PCIAdapter PCIFuncKey", "zeb_db_result_step PCIAdapter",    "zeb_db_free_result PCIAdapter",
    "system /bin/pci_digest.sh",          "INFO: no system inventory change", "INFO: no pci inventory change",
};

std::vector<std::string> operator+(std::vector<std::string> left, const std::vector<std::string>& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

std::string script_writing(const std::string& system_digest, const std::string& pci_digest) {
    return "#!/bin/sh\nprintf '" + system_digest + "' >" + place::system_digest + "\nprintf '" + pci_digest + "' >" +
           place::pci_digest + "\n";
}

}  // namespace

class ParsePci : public sandboxed_test {
protected:
    ParsePci() { platform.run_commands(); }

    void SetUp() override {
        sandboxed_test::SetUp();
        write_file(place::digest_script, "#!/bin/sh\n");
        write_file(
            cds_path,
            cds_component(cds_slots(cds_component(cds_group("cpu_info", {text("Socket Designation", "CPU 1")})))));
    }

    void write_digests(const std::string& system_digest, const std::string& pci_digest) {
        write_file(place::system_digest, system_digest);
        write_file(place::pci_digest, pci_digest);
    }

    void expect_rolled_back() {
        EXPECT_EQ(platform.count("zeb_db_rollback_transaction"), 1u);
        EXPECT_EQ(platform.calls.back(), "zeb_db_rollback_transaction");
    }

    recording_platform platform;
};

TEST_F(ParsePci, RunsEveryStepInOrder) {
    EXPECT_EQ(parse_pci(nullptr, 5), 0);
    const std::vector<std::string> calls_before = {"get_dmdb_handle", "zeb_db_begin_transaction", "parse_aim 5",
                                                   "zeb_db_commit_transaction"};
    EXPECT_EQ(platform.calls, calls_before + calls_after_the_commit);
}

TEST_F(ParsePci, LoadsTheCdsFileBetweenBeginAndParseAim) {
    EXPECT_EQ(parse_pci(cds_path, 5), 0);
    const auto& calls = platform.calls;
    ASSERT_GT(calls.size(), calls_after_the_commit.size() + 4);
    EXPECT_EQ(calls[0], "get_dmdb_handle");
    EXPECT_EQ(calls[1], "zeb_db_begin_transaction");
    EXPECT_EQ(calls[2], "zeb_db_delete Processor");
    EXPECT_THAT(platform.rows_of("Processor"), testing::SizeIs(1));
    const auto loaded = std::find(calls.begin(), calls.end(), "zeb_db_free_content_values");
    const std::vector<std::string> calls_behind(loaded, calls.end());
    const std::vector<std::string> expected = {"zeb_db_free_content_values", "parse_aim 5",
                                               "zeb_db_commit_transaction"};
    EXPECT_EQ(calls_behind, expected + calls_after_the_commit);
    EXPECT_THAT(platform.log, Contains("INFO: successfully parsed \"/tmp/cds.xml\""));
}

TEST_F(ParsePci, HandsTheAimArgumentOnUnchanged) {
    for (const unsigned argument : {0U, 1U, UINT_MAX}) {
        platform.calls.clear();
        EXPECT_EQ(parse_pci(nullptr, argument), 0);
        EXPECT_THAT(platform.calls_of("parse_aim"), ElementsAre("parse_aim " + std::to_string(argument)));
    }
}

TEST_F(ParsePci, FailsWithoutAHandle) {
    platform.fail("get_dmdb_handle");
    EXPECT_EQ(parse_pci(cds_path, 0), -1);
    EXPECT_THAT(platform.calls, ElementsAre("get_dmdb_handle", "ERROR: unable to get dmdb handle"));
}

TEST_F(ParsePci, FailsWithoutARollbackWhenTheTransactionCannotBegin) {
    platform.fail("zeb_db_begin_transaction");
    EXPECT_EQ(parse_pci(cds_path, 0), -1);
    EXPECT_THAT(platform.calls,
                ElementsAre("get_dmdb_handle", "zeb_db_begin_transaction", "ERROR: unable to begin pci transaction"));
}

TEST_F(ParsePci, RollsBackAFailedLoadWithoutCallingParseAim) {
    platform.fail("zeb_db_delete", 5);
    EXPECT_EQ(parse_pci(cds_path, 0), -1);
    EXPECT_THAT(platform.calls,
                ElementsAre("get_dmdb_handle", "zeb_db_begin_transaction", "zeb_db_delete Processor",
                            "ERROR: CDS PARSER: failed to delete Processors, rc=5",
                            "ERROR: parse_aim return error, rc = 0xffffffff", "zeb_db_rollback_transaction"));
}

TEST_F(ParsePci, RollsBackBeforeAnExceptionPasses) {
    platform.throw_from("parse_aim", std::make_exception_ptr(std::bad_alloc()));
    EXPECT_THROW(parse_pci(nullptr, 5), std::bad_alloc);
    EXPECT_THAT(platform.calls, ElementsAre("get_dmdb_handle", "zeb_db_begin_transaction", "parse_aim 5",
                                            "zeb_db_rollback_transaction"));
}

TEST_F(ParsePci, RollsBackWhenTheCdsFileIsMissing) {
    EXPECT_EQ(parse_pci("/tmp/missing.xml", 0), -1);
    EXPECT_THAT(platform.log,
                ElementsAre(StartsWith("ERROR: CDS XML ERROR: "), "ERROR: parse_aim return error, rc = 0xffffffff"));
    EXPECT_EQ(platform.count("parse_aim"), 0u);
    expect_rolled_back();
}

TEST_F(ParsePci, RollsBackWhenTheCdsFileIsBad) {
    write_file(cds_path, "<component><setting_group>");
    EXPECT_EQ(parse_pci(cds_path, 0), -1);
    EXPECT_THAT(platform.log,
                ElementsAre(StartsWith("ERROR: CDS XML ERROR: "), "ERROR: parse_aim return error, rc = 0xffffffff"));
    EXPECT_EQ(platform.count("parse_aim"), 0u);
    expect_rolled_back();
}

TEST_F(ParsePci, RollsBackWhenARowCannotBeInserted) {
    platform.fail("zeb_db_insert", 5);
    EXPECT_EQ(parse_pci(cds_path, 0), -1);
    EXPECT_THAT(platform.log,
                ElementsAre("ERROR: failed to insert Processor (CPU 1), rc=5", "ERROR: failed to extract settings",
                            "ERROR: parse_aim return error, rc = 0xffffffff"));
    EXPECT_EQ(platform.count("parse_aim"), 0u);
    expect_rolled_back();
}

TEST_F(ParsePci, RollsBackAndLogsTheCodeWhenParseAimFails) {
    platform.fail("parse_aim", 0x1AF);
    EXPECT_EQ(parse_pci(nullptr, 0), -1);
    EXPECT_THAT(platform.calls,
                ElementsAre("get_dmdb_handle", "zeb_db_begin_transaction", "parse_aim 0",
                            "ERROR: parse_aim return error, rc = 0x1af", "zeb_db_rollback_transaction"));
}

TEST_F(ParsePci, LogsANegativeCodeOfParseAimWithAllItsBits) {
    platform.fail("parse_aim", -2);
    EXPECT_EQ(parse_pci(nullptr, 0), -1);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: parse_aim return error, rc = 0xfffffffe"));
}

TEST_F(ParsePci, RollsBackWhenTheCommitFails) {
    platform.fail("zeb_db_commit_transaction");
    EXPECT_EQ(parse_pci(nullptr, 0), -1);
    EXPECT_THAT(platform.calls,
                ElementsAre("get_dmdb_handle", "zeb_db_begin_transaction", "parse_aim 0", "zeb_db_commit_transaction",
                            "ERROR: unable to commit pci transaction", "zeb_db_rollback_transaction"));
}

TEST_F(ParsePci, LogsARollbackThatFailsAfterAFailedLoad) {
    platform.fail("parse_aim");
    platform.fail("zeb_db_rollback_transaction");
    EXPECT_EQ(parse_pci(nullptr, 0), -1);
    EXPECT_THAT(platform.log,
                ElementsAre("ERROR: parse_aim return error, rc = 0x1", "ERROR: unable to rollback pci transaction"));
}

TEST_F(ParsePci, LogsARollbackThatFailsAfterAFailedCommit) {
    platform.fail("zeb_db_commit_transaction");
    platform.fail("zeb_db_rollback_transaction");
    EXPECT_EQ(parse_pci(nullptr, 0), -1);
    EXPECT_THAT(platform.log,
                ElementsAre("ERROR: unable to commit pci transaction", "ERROR: unable to rollback pci transaction"));
}

TEST_F(ParsePci, TouchesNoFileWhenItFails) {
    write_digests("s1\n", "p1\n");
    write_file(place::pci_keys, "older keys");
    write_file(place::adapter_keys, "older adapter keys");
    write_file(place::digest_script, script_writing("s2", "p2"));
    platform.query_rows = {{"PCIs", {{7}}}, {"PCIAdapter", {{7}}}};
    platform.fail("parse_aim");
    EXPECT_EQ(parse_pci(nullptr, 0), -1);
    EXPECT_EQ(content_of(place::system_digest), "s1\n");
    EXPECT_EQ(content_of(place::pci_digest), "p1\n");
    EXPECT_EQ(content_of(place::pci_keys), "older keys");
    EXPECT_EQ(content_of(place::adapter_keys), "older adapter keys");
}

TEST_F(ParsePci, SavesThePciKeysBeforeItAsksForTheAdapterKeys) {
    platform.query_rows = {{"PCIs", {{7}, {9}}}, {"PCIAdapter", {{7}}}};
    std::string saved_by_then;
    platform.at_call = [&](const std::string& call) {
        if (call == "zeb_db_query PCIAdapter PCIFuncKey") {
            saved_by_then = content_of(place::pci_keys);
            EXPECT_FALSE(exists(place::adapter_keys));
        }
    };
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_EQ(saved_by_then, words({2, 7, 9}));
    EXPECT_EQ(content_of(place::adapter_keys), words({1, 7}));
}

TEST_F(ParsePci, RunsTheDigestScriptWhenTheKeyFilesAreWritten) {
    platform.query_rows = {{"PCIs", {{7}}}, {"PCIAdapter", {{7}}}};
    write_file(place::digest_script, "#!/bin/sh\ncp /var/DS/pci_inventory.fkey /var/DS/inventory.fkey /tmp\n");
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_EQ(content_of("/tmp/pci_inventory.fkey"), words({1, 7}));
    EXPECT_EQ(content_of("/tmp/inventory.fkey"), words({1, 7}));
}

TEST_F(ParsePci, LeavesThePciKeyFileWithoutPciRows) {
    write_file(place::pci_keys, "older");
    platform.query_rows = {{"PCIAdapter", {{7}}}};
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_EQ(content_of(place::pci_keys), "older");
    EXPECT_EQ(content_of(place::adapter_keys), words({1, 7}));
}

TEST_F(ParsePci, LeavesTheAdapterKeyFileWithoutAdapterRows) {
    write_file(place::adapter_keys, "older");
    platform.query_rows = {{"PCIs", {{7}}}};
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_EQ(content_of(place::pci_keys), words({1, 7}));
    EXPECT_EQ(content_of(place::adapter_keys), "older");
}

TEST_F(ParsePci, SucceedsWhenBothKeyQueriesFail) {
    platform.query_rows = {{"PCIs", {{7}}}, {"PCIAdapter", {{7}}}};
    platform.fail("zeb_db_query");
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_FALSE(exists(place::pci_keys));
    EXPECT_FALSE(exists(place::adapter_keys));
    EXPECT_EQ(platform.count("system"), 1u);
}

TEST_F(ParsePci, SucceedsWhenNoKeyFileCanBeWritten) {
    make_directory(place::pci_keys);
    make_folder_missing(place::adapter_keys);
    platform.query_rows = {{"PCIs", {{7}}}, {"PCIAdapter", {{7}}}};
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: save_fkeys_ToFile: open /var/DS/pci_inventory.fkey failed",
                                          "ERROR: save_fkeys_ToFile: open /var/DS/inventory.fkey failed",
                                          "INFO: no system inventory change", "INFO: no pci inventory change"));
}

TEST_F(ParsePci, ReportsNoChangeOfEqualDigests) {
    write_digests("s1\n", "p1\n");
    write_file(place::digest_script, script_writing("s1", "p1"));
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("INFO: no system inventory change", "INFO: no pci inventory change"));
    EXPECT_EQ(platform.count("agentless_update_inventory_sequence"), 0u);
}

TEST_F(ParsePci, ReportsBothChangesBehindTheScript) {
    write_digests("s1\n", "p1\n");
    write_file(place::digest_script, script_writing("s2", "p2"));
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    const auto script = std::find(platform.calls.begin(), platform.calls.end(), "system /bin/pci_digest.sh");
    EXPECT_THAT(std::vector<std::string>(script, platform.calls.end()),
                ElementsAre("system /bin/pci_digest.sh", "INFO: system inventory changed",
                            "agentless_update_inventory_sequence 0", "INFO: pci inventory changed",
                            "agentless_update_inventory_sequence 1"));
}

TEST_F(ParsePci, ReportsAChangeOfTheSystemInventoryAlone) {
    write_digests("s1\n", "p1\n");
    write_file(place::digest_script, script_writing("s2", "p1"));
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("INFO: system inventory changed", "INFO: no pci inventory change"));
    EXPECT_THAT(platform.calls_of("agentless_update_inventory_sequence"),
                ElementsAre("agentless_update_inventory_sequence 0"));
}

TEST_F(ParsePci, ReportsAChangeOfThePciInventoryAlone) {
    write_digests("s1\n", "p1\n");
    write_file(place::digest_script, script_writing("s1", "p2"));
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("INFO: no system inventory change", "INFO: pci inventory changed"));
    EXPECT_THAT(platform.calls_of("agentless_update_inventory_sequence"),
                ElementsAre("agentless_update_inventory_sequence 1"));
}

TEST_F(ParsePci, ReportsTheFirstDigestsAsChanges) {
    write_file(place::digest_script, script_writing("s1", "p1"));
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("INFO: system inventory changed", "INFO: pci inventory changed"));
}

TEST_F(ParsePci, ComparesDigestsInLength) {
    write_digests("s1\n", "p12\n");
    write_file(place::digest_script, script_writing("s12", "p1"));
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("INFO: system inventory changed", "INFO: pci inventory changed"));
}

TEST_F(ParsePci, ComparesDigestsBehindAZeroByte) {
    write_digests(std::string("s\0001", 3), std::string("p\0001", 3));
    write_file(place::digest_script, script_writing(R"(s\0002)", R"(p\0001)"));
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("INFO: system inventory changed", "INFO: no pci inventory change"));
}

TEST_F(ParsePci, ReadsThePreviousDigestsBeforeTheTransactionBegins) {
    write_digests("s1\n", "p1\n");
    platform.at_call = [&](const std::string& call) {
        if (call == "zeb_db_begin_transaction") {
            write_digests("s2\n", "p2\n");
        }
    };
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("INFO: system inventory changed", "INFO: pci inventory changed"));
}

TEST_F(ParsePci, ReadsThePreviousDigestsOnlyWithAHandle) {
    write_digests("s1\n", "p1\n");
    platform.at_call = [&](const std::string& call) {
        if (call == "get_dmdb_handle") {
            write_digests("s2\n", "p2\n");
        }
    };
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("INFO: no system inventory change", "INFO: no pci inventory change"));
}

TEST_F(ParsePci, ReportsBothChangesWhenTheScriptFailsAndThereWereDigests) {
    write_digests("s1\n", "p1\n");
    write_file(place::digest_script, "#!/bin/sh\nexit 3\n");
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: failed to generate digest", "INFO: system inventory changed",
                                          "INFO: pci inventory changed"));
    EXPECT_THAT(platform.calls_of("agentless_update_inventory_sequence"),
                ElementsAre("agentless_update_inventory_sequence 0", "agentless_update_inventory_sequence 1"));
}

TEST_F(ParsePci, ReportsNoChangeWhenTheScriptFailsAndThereWereNoDigests) {
    write_file(place::digest_script, script_writing("s1", "p1") + "exit 1\n");
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: failed to generate digest", "INFO: no system inventory change",
                                          "INFO: no pci inventory change"));
    EXPECT_EQ(platform.count("agentless_update_inventory_sequence"), 0u);
}

TEST_F(ParsePci, ReportsOnlyTheChangeOfTheDigestThatWasThereWhenTheScriptFails) {
    write_file(place::pci_digest, "p1\n");
    write_file(place::digest_script, "#!/bin/sh\nexit 1\n");
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: failed to generate digest", "INFO: no system inventory change",
                                          "INFO: pci inventory changed"));
}

TEST_F(ParsePci, TakesAScriptThatCannotRunForOneThatFails) {
    std::filesystem::permissions(place::digest_script, std::filesystem::perms::owner_read);
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, Contains("ERROR: failed to generate digest"));
}

TEST_F(ParsePci, TakesAShellThatCannotStartForAScriptThatFails) {
    platform.fail("system", -1);
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, Contains("ERROR: failed to generate digest"));
}

TEST_F(ParsePci, ComparesWithNothingWhenTheScriptRemovesTheDigests) {
    write_file(place::system_digest, "s1\n");
    write_file(place::digest_script, "#!/bin/sh\nrm -f /var/vonk/*\n");
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_THAT(platform.log, ElementsAre("INFO: system inventory changed", "INFO: no pci inventory change"));
}

TEST_F(ParsePci, IgnoresNoticesThatFail) {
    write_file(place::digest_script, script_writing("s1", "p1"));
    platform.fail("agentless_update_inventory_sequence");
    EXPECT_EQ(parse_pci(nullptr, 0), 0);
    EXPECT_EQ(platform.count("agentless_update_inventory_sequence"), 2u);
}
