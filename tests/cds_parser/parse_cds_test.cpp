// SPDX-License-Identifier: Apache-2.0

// A whole load, from the entry point to the database client.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <algorithm>
#include <map>
#include <new>
#include <ostream>
#include <set>
#include <stdexcept>

#include "support/cds_text.h"
#include "support/hardware.h"
#include "support/recording_platform.h"
#include "support/scratch_file.h"

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

std::string processor() {
    return cds_component(cds_group("cpu_info", processor_settings()));
}

std::string memory() {
    return cds_component(cds_group("memory_info", {text("Bank Locator", "Bank 1")}));
}

std::string device(const std::string& bus) {
    return cds_component(cds_group("pci_device_info", device_settings(bus)));
}

std::string flex_140() {
    std::vector<setting> settings = device_settings("9");
    settings.push_back(hex("Vendor ID", "0x8086"));
    settings.push_back(hex("Device ID", "0x56C1"));
    return cds_component(cds_group("pci_device_info", settings));
}

// One of everything that leaves a row.
std::string small_server() {
    const std::string bridge =
        cds_component(cds_group("pci_bridge_info", bridge_settings("1")) + cds_slots(device("2")));
    return cds_component(cds_slots(cds_component(cds_group("component_struct_info", main_server_settings("3")) +
                                                 cds_slots(processor() + memory()) + cds_slots(bridge))));
}

const std::vector<std::string> emptied_tables = {"zeb_db_delete Processor", "zeb_db_delete Memory",
                                                 "system touch /tmp/.dmdb_memory_deleted_flag",
                                                 "zeb_db_delete PCIBridge", "zeb_db_delete PCIs"};

const std::vector<std::string> released_buffer = {"zeb_db_content_clear", "zeb_db_free_content_values"};

using call_list = std::vector<std::string>;

call_list operator+(call_list calls, const call_list& more) {
    calls.insert(calls.end(), more.begin(), more.end());
    return calls;
}

std::string success(const scratch_file& file) {
    return "INFO: successfully parsed \"" + std::string(file.path()) + '"';
}

class ParseCds : public testing::Test {
protected:
    int load(const scratch_file& file) { return parse_cds(platform.handle(), file.path()); }

    // Every call of a load that stops at what `rest` tells, with the buffer taken and given back around it.
    void expect_calls(const call_list& rest) const {
        EXPECT_THAT(platform.calls,
                    ElementsAreArray(emptied_tables + call_list{"zeb_db_get_content_values"} + rest + released_buffer));
    }

    recording_platform platform;
};

}  // namespace

TEST_F(ParseCds, EmptiesTheTablesTakesTheBufferReadsWritesAndReleasesInThatOrder) {
    const scratch_file file(small_server());
    platform.next_row_id = 10;
    EXPECT_EQ(load(file), 0);
    expect_calls({
        "sysxml::parser",

        "zeb_db_content_clear",
        "zeb_db_content_put_uint NodeIndex 3",
        "zeb_db_content_put_uint CoreCount 8",
        "zeb_db_insert Processor",

        "zeb_db_content_clear",
        "zeb_db_content_put_uint64 ArrayId 18446744073709551615",
        "zeb_db_content_put_uint NodeIndex 3",
        "zeb_db_content_put_text BankLocator Bank 1",
        "zeb_db_insert Memory",

        "zeb_db_content_clear",
        "zeb_db_content_put_uint64 ParentId 18446744073709551615",
        "zeb_db_content_put_uint NodeIndex 3",
        "zeb_db_content_put_uint SegNo 0",
        "zeb_db_content_put_uint BusNo 1",
        "zeb_db_content_put_uint DevNo 0",
        "zeb_db_content_put_uint FunNo 0",
        "zeb_db_insert PCIBridge",

        "zeb_db_content_clear",
        "zeb_db_content_put_uint64 BridgeId 12",
        "zeb_db_content_put_uint NodeIndex 3",
        "zeb_db_content_put_uint DevKey " + std::to_string(0x0301FFFF),
        "zeb_db_content_put_uint FunKey " + std::to_string(0x00020000),
        "zeb_db_content_put_uint SegNo 0",
        "zeb_db_content_put_uint BusNo 2",
        "zeb_db_content_put_uint DeviceNo 0",
        "zeb_db_content_put_uint FunctionNo 0",
        "zeb_db_content_put_uint SlotNo 4294967295",
        "zeb_db_content_put_uint Location 1",
        "zeb_db_content_put_uint HardwareId " + std::to_string(0x00020000),
        "zeb_db_content_put_uint HardwareTypeId 3",
        "zeb_db_content_put_uint FunType 7",
        "zeb_db_insert PCIs",
        "INFO: CDS PARSER: find a PCI device, slot=-1, bus=2, funNo=0",

        success(file),
    });
}

TEST_F(ParseCds, WithoutAHandleFailsSilentlyAndTouchesNothing) {
    const scratch_file file(small_server());
    EXPECT_EQ(parse_cds(nullptr, file.path()), -1);
    EXPECT_EQ(parse_cds(nullptr, nullptr), -1);
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(ParseCds, OfABareRootSucceedsWithoutARow) {
    const scratch_file file(cds_component(""));
    EXPECT_EQ(load(file), 0);
    expect_calls({"sysxml::parser", success(file)});
}

TEST_F(ParseCds, SucceedsWithoutTheMarker) {
    const scratch_file file(small_server());
    platform.fail("system", 256);
    EXPECT_EQ(load(file), 0);
    EXPECT_EQ(platform.log.front(), "ERROR: CDS PARSER: failed to create /tmp/.dmdb_memory_deleted_flag");
    EXPECT_EQ(platform.log.back(), success(file));
    EXPECT_EQ(platform.rows.size(), 4u);
}

TEST_F(ParseCds, WithoutABufferFailsWithTheTablesEmptied) {
    const scratch_file file(small_server());
    platform.fail("zeb_db_get_content_values");
    EXPECT_EQ(load(file), -1);
    EXPECT_THAT(platform.calls,
                ElementsAreArray(emptied_tables + call_list{"zeb_db_get_content_values", "ERROR: no memory",
                                                            "ERROR: failed to initialize the parser"}));
}

TEST_F(ParseCds, OfANullPathFailsWithTheTablesEmptied) {
    EXPECT_EQ(parse_cds(platform.handle(), nullptr), -1);
    expect_calls({"ERROR: failed to parse the CDS XML file"});
}

TEST_F(ParseCds, OfAnotherRootElementFailsWithTheTablesEmptied) {
    EXPECT_EQ(load(scratch_file("<inventory/>")), -1);
    expect_calls({"sysxml::parser", "ERROR: failed to parse the CDS XML file"});
}

TEST_F(ParseCds, OfAnUnexpectedElementFailsWithTheTablesEmptied) {
    EXPECT_EQ(load(scratch_file(cds_component(cds_slots(processor() + "<fan/>")))), -1);
    expect_calls({"sysxml::parser", "ERROR: CDS XML ERROR: Unexpected node 'fan' in child_slot_group"});
}

TEST_F(ParseCds, OfANamelessSettingFailsWithTheTablesEmptied) {
    EXPECT_EQ(load(scratch_file(cds_component(cds_group("cpu_info", {integer("", "8")})))), -1);
    expect_calls({"sysxml::parser", "ERROR: CDS XML ERROR: empty setting name"});
}

TEST_F(ParseCds, OfAFileThatTheXmlLibraryRefusesFailsWithTheTablesEmptied) {
    platform.throw_from("sysxml::parser", std::make_exception_ptr(sysipc::exception("no such thing")));
    EXPECT_EQ(load(scratch_file(small_server())), -1);
    expect_calls({"sysxml::parser", "ERROR: CDS XML ERROR: no such thing"});
}

TEST_F(ParseCds, OfAMissingFileFailsWithTheTablesEmptied) {
    EXPECT_EQ(parse_cds(platform.handle(), "no such file.xml"), -1);
    ASSERT_EQ(platform.log.size(), 1u);
    expect_calls({"sysxml::parser", platform.log[0]});
    EXPECT_THAT(platform.log[0], testing::StartsWith("ERROR: CDS XML ERROR: "));
}

TEST_F(ParseCds, FailsForOneRowAndWritesAllOthers) {
    const scratch_file file(small_server());
    platform.fail_once("zeb_db_insert", 2, 5);
    EXPECT_EQ(load(file), -1);
    EXPECT_EQ(platform.rows.size(), 4u);
    EXPECT_THAT(platform.log, ElementsAre("WARNING: failed to insert Memory (Bank 1), rc=5",
                                          "INFO: CDS PARSER: find a PCI device, slot=-1, bus=2, funNo=0",
                                          "ERROR: failed to extract settings"));
}

TEST_F(ParseCds, FailsForABridgeAndLeavesItsSubtreeUnwritten) {
    const scratch_file file(small_server());
    platform.fail_once("zeb_db_insert", 3, 5);
    EXPECT_EQ(load(file), -1);
    EXPECT_THAT(platform.rows_of("PCIs"), IsEmpty());
    EXPECT_THAT(platform.log, ElementsAre("WARNING: failed to insert PCI Bridge (seg_num=0, bus_num=1, dev_num=0, "
                                          "fun_num=0), rc=5",
                                          "ERROR: failed to extract settings"));
}

TEST_F(ParseCds, RemembersNothingFromLoadToLoad) {
    const scratch_file first(cds_component(cds_group("component_struct_info", main_server_settings("3")) +
                                           cds_slots(processor() + flex_140() + flex_140())));
    EXPECT_EQ(load(first), 0);
    EXPECT_EQ(load(first), 0);
    EXPECT_EQ(platform.rows_of("PCIs").size(), 2u);
    EXPECT_EQ(load(scratch_file(cds_component(cds_slots(processor())))), 0);
    EXPECT_EQ(platform.rows.back()["NodeIndex"], "uint:4294967295");
}

TEST_F(ParseCds, LeavesTransactionsToItsCaller) {
    const scratch_file file(small_server());
    EXPECT_EQ(load(file), 0);
    platform.fail("zeb_db_insert");
    EXPECT_EQ(load(file), -1);
    EXPECT_EQ(platform.count("zeb_db_begin_transaction"), 0u);
    EXPECT_EQ(platform.count("zeb_db_commit_transaction"), 0u);
    EXPECT_EQ(platform.count("zeb_db_rollback_transaction"), 0u);
}

TEST_F(ParseCds, ReleasesTheBufferWhenAnExceptionOfTheReadingPasses) {
    platform.throw_from("sysxml::parser", std::make_exception_ptr(std::bad_alloc()));
    EXPECT_THROW(load(scratch_file(small_server())), std::bad_alloc);
    expect_calls({"sysxml::parser"});
}

TEST_F(ParseCds, ReleasesTheBufferWhenAnExceptionOfTheWalkPasses) {
    platform.throw_from("zeb_db_insert", std::make_exception_ptr(std::runtime_error("the client is gone")));
    EXPECT_THROW(load(scratch_file(cds_component(cds_slots(processor() + memory())))), std::runtime_error);
    expect_calls({"sysxml::parser", "zeb_db_content_clear", "zeb_db_content_put_uint NodeIndex 4294967295",
                  "zeb_db_content_put_uint CoreCount 8", "zeb_db_insert Processor"});
}

// Tables that cannot be emptied

namespace {

struct table_fault {
    const char* table;
    int occurrence;  // of the delete, in the order of the tables
    const char* log;
};

std::ostream& operator<<(std::ostream& out, const table_fault& fault) {
    return out << fault.table;
}

class ParseCdsTableFault : public testing::TestWithParam<table_fault> {};

}  // namespace

TEST_P(ParseCdsTableFault, FailsTheLoadBeforeTheBufferIsTaken) {
    recording_platform platform;
    platform.fail_once("zeb_db_delete", GetParam().occurrence, 5);
    const scratch_file file(small_server());
    EXPECT_EQ(parse_cds(platform.handle(), file.path()), -1);
    const auto failed =
        std::find(emptied_tables.begin(), emptied_tables.end(), std::string("zeb_db_delete ") + GetParam().table);
    ASSERT_NE(failed, emptied_tables.end());
    EXPECT_THAT(platform.calls,
                ElementsAreArray(call_list(emptied_tables.begin(), failed + 1) + call_list{GetParam().log}));
}

INSTANTIATE_TEST_SUITE_P(
    Each, ParseCdsTableFault,
    testing::Values(table_fault{"Processor", 1, "ERROR: CDS PARSER: failed to delete Processors, rc=5"},
                    table_fault{"Memory", 2, "ERROR: CDS PARSER: failed to delete Memory Devices, rc=5"},
                    table_fault{"PCIBridge", 3, "ERROR: CDS PARSER: failed to delete PCI Bridges, rc=5"},
                    table_fault{"PCIs", 4, "ERROR: CDS PARSER: failed to delete PCI devices, rc=5"}),
    [](const auto& instance) { return std::string(instance.param.table); });

// Every call that can fail

namespace {

// A value that does not get into its row and a marker that cannot be left are passed over; everything else fails the
// load.
const std::map<std::string, int> outcomes = {
    {"zeb_db_delete", -1},
    {"system", 0},
    {"zeb_db_get_content_values", -1},
    {"sysxml::parser", -1},
    {"zeb_db_content_put_text", 0},
    {"zeb_db_content_put_uint", 0},
    {"zeb_db_content_put_uint64", 0},
    {"zeb_db_insert", -1},
};

void expect_outcome(const recording_platform& platform, int result) {
    const std::string& failed = platform.failed_function();
    EXPECT_EQ(result, outcomes.at(failed));
    EXPECT_EQ(platform.log.back().rfind("INFO: successfully parsed", 0) == 0, result == 0);
    const bool got_buffer = platform.count("zeb_db_get_content_values") == 1 && failed != "zeb_db_get_content_values";
    EXPECT_EQ(platform.count("zeb_db_free_content_values"), got_buffer ? 1u : 0u);
    EXPECT_TRUE(platform.everything_released());
    if (failed.rfind("zeb_db_content_put_", 0) == 0) {
        EXPECT_EQ(platform.count("zeb_db_insert"), 4u);
    }
}

}  // namespace

TEST(ParseCdsFaults, EveryCallThatFailsOnceHasItsOutcome) {
    const scratch_file file(small_server());
    std::set<std::string> failed;
    for (int call = 1;; ++call) {
        SCOPED_TRACE(call);
        recording_platform platform;
        platform.fail_call(call, 5);
        const int result = parse_cds(platform.handle(), file.path());
        if (!platform.fired()) {
            EXPECT_EQ(result, 0);
            break;
        }
        expect_outcome(platform, result);
        failed.insert(platform.failed_function());
    }
    EXPECT_EQ(failed.size(), outcomes.size()) << "a call that was to fail was never made";
}

TEST(ParseCdsFaults, EveryCallThatFailsFromThenOnHasItsOutcome) {
    const scratch_file file(small_server());
    for (const auto& [function, outcome] : outcomes) {
        SCOPED_TRACE(function);
        recording_platform platform;
        platform.fail(function, 5);
        expect_outcome(platform, parse_cds(platform.handle(), file.path()));
    }
}

TEST(ParseCdsFaults, EveryCallThatThrowsHasItsExceptionPassedOnAndTheBufferReleased) {
    const scratch_file file(small_server());
    for (const auto& [function, outcome] : outcomes) {
        SCOPED_TRACE(function);
        recording_platform platform;
        platform.throw_from(function, std::make_exception_ptr(std::runtime_error("out of order")));
        EXPECT_THROW(parse_cds(platform.handle(), file.path()), std::runtime_error);
        EXPECT_TRUE(platform.everything_released());
    }
}
