// SPDX-License-Identifier: Apache-2.0

// The loader's own state and steps; what the walk does is tested with parse_component().

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <memory>
#include <new>
#include <stdexcept>

#include "support/cds_text.h"
#include "support/hardware.h"
#include "support/recording_platform.h"
#include "support/scratch_file.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class Parser : public testing::Test {
protected:
    int wipe() { return parser.wipe(platform.handle()); }

    int parse(const char* path) { return parser.parse(platform.handle(), path); }

    int parse_text(const std::string& cds) { return parse(scratch_file(cds).path()); }

    // What the document itself says about a file that it refuses.
    static std::string refusal_of(const char* path) {
        cds_parser::document document;
        try {
            document.parse(path);
        } catch (const sysipc::exception& error) {
            return error.what();
        }
        ADD_FAILURE() << path << " was not refused";
        return {};
    }

    recording_platform platform;
    cds_parser::parser parser;
};

const std::string touch_marker = "system touch /tmp/.dmdb_memory_deleted_flag";

}  // namespace

// State

TEST_F(Parser, StartsOutsideAnyServerAndBridgeWithNothing) {
    EXPECT_EQ(parser.node_index, -1);
    EXPECT_EQ(parser.parent_id, -1);
    EXPECT_EQ(parser.last_row_id, -1);
    EXPECT_THAT(parser.parent_stack, IsEmpty());
    EXPECT_EQ(parser.content, nullptr);
    EXPECT_THAT(parser.device_keys, IsEmpty());
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(Parser, TakesItsBufferFromTheClient) {
    EXPECT_EQ(parser.init(), 1);
    EXPECT_NE(parser.content, nullptr);
    EXPECT_THAT(platform.calls, ElementsAre("zeb_db_get_content_values"));
}

TEST_F(Parser, LogsWhenTheClientHasNoBuffer) {
    platform.fail("zeb_db_get_content_values");
    EXPECT_EQ(parser.init(), 0);
    EXPECT_EQ(parser.content, nullptr);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: no memory"));
}

TEST_F(Parser, ClearsAndFreesItsBufferOnce) {
    parser.init();
    platform.calls.clear();
    parser.clear();
    EXPECT_EQ(parser.content, nullptr);
    EXPECT_TRUE(platform.everything_released());
    parser.clear();
    EXPECT_THAT(platform.calls, ElementsAre("zeb_db_content_clear", "zeb_db_free_content_values"));
}

TEST_F(Parser, ClearedWithoutABufferCallsNothing) {
    parser.clear();
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(Parser, ClearedIsOutsideAnyServerAndBridgeAgain) {
    parser.node_index = 1;
    parser.parent_id = 2;
    parser.last_row_id = 3;
    parser.parent_stack = {-1, 4};
    parser.clear();
    EXPECT_EQ(parser.node_index, -1);
    EXPECT_EQ(parser.parent_id, -1);
    EXPECT_EQ(parser.last_row_id, -1);
    EXPECT_THAT(parser.parent_stack, IsEmpty());
}

TEST_F(Parser, ClearedKeepsItsDeviceKeys) {
    parser.device_keys = {{0x02010005, 0x3B}};
    parser.clear();
    EXPECT_THAT(parser.device_keys, ElementsAre(Pair(0x02010005u, 0x3B)));
}

TEST_F(Parser, MayTakeABufferAgainAfterClearing) {
    parser.init();
    parser.clear();
    EXPECT_EQ(parser.init(), 1);
    EXPECT_NE(parser.content, nullptr);
}

TEST_F(Parser, DestroyedReleasesItsBuffer) {
    auto destroyed = std::make_unique<cds_parser::parser>();
    destroyed->init();
    platform.calls.clear();
    destroyed.reset();
    EXPECT_THAT(platform.calls, ElementsAre("zeb_db_content_clear", "zeb_db_free_content_values"));
}

TEST_F(Parser, DestroyedWithoutABufferCallsNothing) {
    std::make_unique<cds_parser::parser>().reset();
    EXPECT_THAT(platform.calls, IsEmpty());
}

// wipe()

TEST_F(Parser, WipesTheTablesWithTheMarkerBehindTheMemoryRows) {
    EXPECT_EQ(wipe(), 1);
    EXPECT_THAT(platform.calls, ElementsAre("zeb_db_delete Processor", "zeb_db_delete Memory", touch_marker,
                                            "zeb_db_delete PCIBridge", "zeb_db_delete PCIs"));
}

TEST_F(Parser, StopsWipingAtProcessorsThatCannotBeDeleted) {
    platform.fail_once("zeb_db_delete", 1, 5);
    EXPECT_EQ(wipe(), 0);
    EXPECT_THAT(platform.calls,
                ElementsAre("zeb_db_delete Processor", "ERROR: CDS PARSER: failed to delete Processors, rc=5"));
}

TEST_F(Parser, StopsWipingAtMemoryThatCannotBeDeletedAndLeavesNoMarker) {
    platform.fail_once("zeb_db_delete", 2, -5);
    EXPECT_EQ(wipe(), 0);
    EXPECT_THAT(platform.calls, ElementsAre("zeb_db_delete Processor", "zeb_db_delete Memory",
                                            "ERROR: CDS PARSER: failed to delete Memory Devices, rc=-5"));
}

TEST_F(Parser, StopsWipingAtBridgesThatCannotBeDeletedWithTheMarkerLeft) {
    platform.fail_once("zeb_db_delete", 3, 5);
    EXPECT_EQ(wipe(), 0);
    EXPECT_THAT(platform.calls,
                ElementsAre("zeb_db_delete Processor", "zeb_db_delete Memory", touch_marker, "zeb_db_delete PCIBridge",
                            "ERROR: CDS PARSER: failed to delete PCI Bridges, rc=5"));
}

TEST_F(Parser, FailsToWipeWhenDevicesCannotBeDeleted) {
    platform.fail_once("zeb_db_delete", 4, 5);
    EXPECT_EQ(wipe(), 0);
    EXPECT_THAT(platform.calls,
                ElementsAre("zeb_db_delete Processor", "zeb_db_delete Memory", touch_marker, "zeb_db_delete PCIBridge",
                            "zeb_db_delete PCIs", "ERROR: CDS PARSER: failed to delete PCI devices, rc=5"));
}

TEST_F(Parser, GoesOnWipingWhenTheMarkerCannotBeLeft) {
    for (const int status : {256, -1}) {
        platform.calls.clear();
        platform.fail("system", status);
        EXPECT_EQ(wipe(), 1);
        EXPECT_THAT(platform.calls, ElementsAre("zeb_db_delete Processor", "zeb_db_delete Memory", touch_marker,
                                                "ERROR: CDS PARSER: failed to create /tmp/.dmdb_memory_deleted_flag",
                                                "zeb_db_delete PCIBridge", "zeb_db_delete PCIs"));
    }
}

// parse()

TEST_F(Parser, ParsesAFileWithoutHardwareWithoutARow) {
    const scratch_file file(cds_component(""));
    EXPECT_EQ(parse(file.path()), 1);
    EXPECT_THAT(platform.calls, ElementsAre("zeb_db_get_content_values", "sysxml::parser",
                                            "INFO: successfully parsed \"" + std::string(file.path()) + '"'));
}

TEST_F(Parser, ParsesTheRootLikeAnyComponent) {
    EXPECT_EQ(parse_text(cds_component(cds_group("component_struct_info", main_server_settings("3")) +
                                       cds_group("cpu_info", processor_settings()))),
              1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0].table, "Processor");
    EXPECT_EQ(platform.rows[0]["NodeIndex"], "uint:3");
}

TEST_F(Parser, HoldsItsBufferAfterParsing) {
    EXPECT_EQ(parse_text(cds_component("")), 1);
    EXPECT_NE(parser.content, nullptr);
    EXPECT_FALSE(platform.everything_released());
}

TEST_F(Parser, ReadsNoFileWithoutABuffer) {
    platform.fail("zeb_db_get_content_values");
    EXPECT_EQ(parse_text(cds_component("")), 0);
    EXPECT_THAT(platform.calls,
                ElementsAre("zeb_db_get_content_values", "ERROR: no memory", "ERROR: failed to initialize the parser"));
}

TEST_F(Parser, RefusesANullPath) {
    EXPECT_EQ(parse(nullptr), 0);
    EXPECT_THAT(platform.calls, ElementsAre("zeb_db_get_content_values", "ERROR: failed to parse the CDS XML file"));
}

TEST_F(Parser, RefusesXmlWhoseRootIsNoComponent) {
    EXPECT_EQ(parse_text("<setting_group><name>cpu_info</name></setting_group>"), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: failed to parse the CDS XML file"));
}

TEST_F(Parser, LogsWhyAnElementIsRefused) {
    EXPECT_EQ(parse_text(cds_component("<name>server</name>")), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: CDS XML ERROR: Unexpected node 'name' in component"));
}

TEST_F(Parser, LogsThatASettingGroupHasNoName) {
    EXPECT_EQ(parse_text(cds_component(cds_group(""))), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: CDS XML ERROR: empty setting group name"));
}

TEST_F(Parser, LogsThatASettingHasNoName) {
    EXPECT_EQ(parse_text(cds_component(cds_group("cpu_info", {integer("", "8")}))), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: CDS XML ERROR: empty setting name"));
}

TEST_F(Parser, LogsWhyTheXmlLibraryRefusesAFile) {
    platform.throw_from("sysxml::parser", std::make_exception_ptr(sysipc::exception("100 %s of it is broken", 7, 8)));
    EXPECT_EQ(parse_text(cds_component("")), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: CDS XML ERROR: 100 %s of it is broken"));
}

TEST_F(Parser, LogsThatAFileIsMissing) {
    const char* path = "no such file.xml";
    const std::string why = refusal_of(path);
    EXPECT_EQ(parse(path), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: CDS XML ERROR: " + why));
}

TEST_F(Parser, LogsThatAFileIsADirectory) {
    const std::string why = refusal_of(".");
    EXPECT_EQ(parse("."), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: CDS XML ERROR: " + why));
}

TEST_F(Parser, LogsThatAFileIsNotWellFormed) {
    const scratch_file file("<component>\n");
    const std::string why = refusal_of(file.path());
    EXPECT_EQ(parse(file.path()), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: CDS XML ERROR: " + why));
}

TEST_F(Parser, WritesNothingOfAFileThatIsRefusedAtItsEnd) {
    EXPECT_EQ(parse_text(cds_component(cds_group("cpu_info", processor_settings()) + "<name>late</name>")), 0);
    EXPECT_THAT(platform.rows, IsEmpty());
}

TEST_F(Parser, LogsThatRowsAreMissingAfterTheReason) {
    platform.fail_once("zeb_db_insert", 1, 5);
    EXPECT_EQ(parse_text(cds_component(cds_slots(cds_component(cds_group("cpu_info", processor_settings())) +
                                                 cds_component(cds_group("memory_info", memory_settings()))))),
              0);
    EXPECT_EQ(platform.rows_of("Memory").size(), 1u);
    EXPECT_THAT(platform.log,
                ElementsAre("ERROR: failed to insert Processor (), rc=5", "ERROR: failed to extract settings"));
}

TEST_F(Parser, LetsOtherExceptionsOfTheReadingPass) {
    platform.throw_from("sysxml::parser", std::make_exception_ptr(std::bad_alloc()));
    EXPECT_THROW(parse_text(cds_component("")), std::bad_alloc);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(Parser, LetsEveryExceptionOfTheWalkPass) {
    const std::string cds = cds_component(cds_group("cpu_info", processor_settings()));
    platform.throw_from("zeb_db_insert", std::make_exception_ptr(std::runtime_error("the client is gone")));
    EXPECT_THROW(parse_text(cds), std::runtime_error);
    parser.clear();
    platform.throw_from("zeb_db_insert", std::make_exception_ptr(sysipc::exception("the client is gone")));
    EXPECT_THROW(parse_text(cds), sysipc::exception);
    EXPECT_THAT(platform.log, IsEmpty());
}
