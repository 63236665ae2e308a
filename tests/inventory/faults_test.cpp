// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>

#include "inventory/input_files.h"
#include "support/cds_text.h"
#include "support/recording_platform.h"
#include "support/sandboxed_test.h"

namespace {

constexpr const char* input = "/tmp/input.xml";

constexpr int failure = 7;

const std::vector<setting> bridge = {
    integer("Bus Number", "1"),   integer("Device Number", "2"), integer("Function Number", "3"),
    integer("Vendor ID", "6659"), integer("Device ID", "4432"),
};

const std::vector<setting> function = {
    integer("Bus Number", "4"),  integer("Device Number", "5"), integer("Function Number", "6"),
    integer("Slot Number", "7"), integer("Location", "1"),      integer("Vendor ID", "8"),
};

// A file with one row for each of the four tables.
std::string cds_file() {
    return cds_component(cds_slots(
        cds_component(cds_group("cpu_info", {text("Socket Designation", "CPU 1")})) +
        cds_component(cds_group("memory_info", {text("Device Locator", "DIMM 1"), integer("Type Detail", "0")})) +
        cds_component(cds_group("pci_bridge_info", bridge) +
                      cds_slots(cds_component(cds_group("pci_device_info", function))))));
}

// The function of a noted call; empty for a log line.
std::string function_of(const std::string& call) {
    const std::string word = call.substr(0, call.find(' '));
    return word.back() == ':' ? std::string() : word;
}

}  // namespace

// Makes calls fail one after the other, until every one had its turn.
class Faults : public sandboxed_test {
protected:
    struct outcome {
        int result;
        bool rolled_back = false;
        bool rebuilt = false;
    };

    void SetUp() override {
        sandboxed_test::SetUp();
        write_file(place::digest_script, "#!/bin/sh\n");
        write_file(cds_path, cds_file());
        write_file(input, "");
        write_file("/tmp/input.xml.digest",
                   "38b060a751ac96384cd9327eb1b1e36a21fdb71114be0743"
                   "4c0cc7bf63f6e1da274edebfe76f65fbd51ad2f14898b95b\n");
    }

    // Calls `entry_point` on a platform that `fault` prepared, and compares with what `expected` says of the call that
    // failed. Whether a call failed.
    bool run(const std::function<void(recording_platform&)>& fault) {
        recording_platform platform;
        prepare(platform);
        fault(platform);
        const int result = entry_point();
        if (platform.fired()) {
            const outcome wanted = expected(platform.failed_call());
            const std::string where = "failed: " + platform.failed_call();
            EXPECT_EQ(result, wanted.result) << where;
            EXPECT_EQ(platform.count("zeb_db_rollback_transaction"), wanted.rolled_back ? 1u : 0u) << where;
            EXPECT_EQ(platform.count("rebuild_tables_in_memory"), wanted.rebuilt ? 1u : 0u) << where;
            EXPECT_TRUE(platform.everything_released()) << where;
        }
        return platform.fired();
    }

    void prepare(recording_platform& platform) const {
        write_file(place::pci_keys, words({2, 7, 9}));
        write_file(place::adapter_keys, words({2, 7, 9}));
        std::filesystem::remove(place::bmc_address);
        platform.run_commands();
        platform.pending_firmware = 2;
        platform.query_rows = {{"PCIs", {{7}, {9}}}, {"PCIAdapter", {{7}, {9}}}, {"PCIBridge", {{1, 2, 3}}}};
        platform.failing_queries_with_result = queries_with_result;
    }

    // How often each function is called when nothing fails.
    std::map<std::string, int> uses() const {
        recording_platform platform;
        prepare(platform);
        entry_point();
        std::map<std::string, int> counts;
        for (const std::string& call : platform.calls) {
            ++counts[function_of(call)];
        }
        counts.erase("");
        return counts;
    }

    void fail_each_call() {
        int n = 1;
        while (run([n](auto& platform) { platform.fail_call(n, failure); })) {
            ++n;
        }
        EXPECT_GT(n, 5) << "too few calls to mean anything";
    }

    // By function: its first use, its last use, and every use.
    void fail_each_function() {
        const std::set<std::string> never_fail = {"zeb_db_content_clear", "zeb_db_free_content_values",
                                                  "zeb_db_free_result"};
        for (const auto& use : uses()) {
            const std::string& name = use.first;
            if (never_fail.count(name) != 0) {
                continue;
            }
            for (const int occurrence : {1, use.second}) {
                EXPECT_TRUE(run([&](auto& platform) { platform.fail_once(name, occurrence, failure); })) << name;
            }
            EXPECT_TRUE(run([&](auto& platform) { platform.fail(name, failure); })) << name;
        }
    }

    std::function<int()> entry_point;
    std::function<outcome(const std::string& failed_call)> expected;
    std::set<std::string> queries_with_result;
};

class ParsePciFaults : public Faults {
protected:
    ParsePciFaults() {
        entry_point = [] { return parse_pci(cds_path, 5); };
        expected = [](const std::string& failed_call) -> outcome {
            const std::string failed = function_of(failed_call);
            if (failed == "get_dmdb_handle" || failed == "zeb_db_begin_transaction") {
                return {-1};
            }
            const std::set<std::string> before_the_commit = {
                "zeb_db_delete", "zeb_db_get_content_values", "sysxml::parser", "zeb_db_insert",
                "parse_aim",     "zeb_db_commit_transaction",
            };
            const bool fails = before_the_commit.count(failed) != 0;
            return {fails ? -1 : 0, fails};
        };
    }
};

TEST_F(ParsePciFaults, OfEachCallHaveTheirOutcome) {
    fail_each_call();
}

TEST_F(ParsePciFaults, OfEachFunctionHaveTheirOutcome) {
    fail_each_function();
}

TEST_F(ParsePciFaults, OfQueriesThatGiveAResultAllTheSameReleaseIt) {
    queries_with_result = {"PCIs", "PCIAdapter"};
    fail_each_function();
}

TEST_F(ParsePciFaults, AreTheSameWhenTheRollbackFailsToo) {
    for (const std::string first :
         {"zeb_db_delete", "zeb_db_get_content_values", "zeb_db_insert", "parse_aim", "zeb_db_commit_transaction"}) {
        recording_platform platform;
        prepare(platform);
        platform.fail(first);
        platform.fail("zeb_db_rollback_transaction");
        EXPECT_EQ(entry_point(), -1) << first;
        EXPECT_EQ(platform.log.back(), "ERROR: unable to rollback pci transaction") << first;
        EXPECT_EQ(platform.count("zeb_db_rollback_transaction"), 1u) << first;
        EXPECT_TRUE(platform.everything_released()) << first;
    }
}

class CheckPciFaults : public Faults {
protected:
    CheckPciFaults() {
        entry_point = [this] { return check_pci(input, input, &changed); };
        expected = [](const std::string& failed_call) -> outcome {
            const std::string failed = function_of(failed_call);
            const bool fails =
                failed == "popen" || failed == "get_dmdb_handle" || failed_call == "zeb_db_query PCIAdapter PCIFuncKey";
            return {fails ? -1 : 0, false, !fails};
        };
    }

    int changed = 77;
};

TEST_F(CheckPciFaults, OfEachCallHaveTheirOutcome) {
    fail_each_call();
}

TEST_F(CheckPciFaults, OfEachFunctionHaveTheirOutcome) {
    fail_each_function();
}

TEST_F(CheckPciFaults, OfQueriesThatGiveAResultAllTheSameReleaseIt) {
    queries_with_result = {"PCIs", "PCIAdapter"};
    fail_each_function();
}

class UpdateBmcAddressFaults : public Faults {
protected:
    UpdateBmcAddressFaults() {
        entry_point = [] { return update_bmc_addr(); };
        expected = [](const std::string& failed_call) -> outcome {
            const std::string failed = function_of(failed_call);
            if (failed == "get_dmdb_handle") {
                return {6};
            }
            return {failed == "zeb_db_query" || failed == "zeb_db_result_step" ? failure : 0};
        };
    }
};

TEST_F(UpdateBmcAddressFaults, OfEachCallHaveTheirOutcome) {
    fail_each_call();
}

TEST_F(UpdateBmcAddressFaults, OfEachFunctionHaveTheirOutcome) {
    fail_each_function();
}

TEST_F(UpdateBmcAddressFaults, OfQueriesThatGiveAResultAllTheSameReleaseIt) {
    queries_with_result = {"PCIBridge"};
    fail_each_function();
}
