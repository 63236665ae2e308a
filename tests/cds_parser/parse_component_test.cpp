// SPDX-License-Identifier: Apache-2.0

// The dispatch of components to the record writers and the walk through their children.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <memory>
#include <stdexcept>

#include "support/hardware.h"
#include "support/recording_platform.h"
#include "support/tree_builder.h"

using cds_parser::component;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

component* make_processor() {
    return make_component("cpu_info", processor_settings());
}

component* make_memory() {
    return make_component("memory_info", memory_settings());
}

component* make_device(const std::string& bus = "1") {
    return make_component("pci_device_info", device_settings(bus));
}

component* make_bridge(const std::string& bus, const std::vector<component*>& children) {
    component* bridge = make_component("pci_bridge_info", bridge_settings(bus));
    add_children(*bridge, children);
    return bridge;
}

// A bridge that leaves no row.
component* make_bridge_without_function(const std::vector<component*>& children) {
    component* bridge = make_component("pci_bridge_info", {integer("Bus Number", "1"), integer("Device Number", "0")});
    add_children(*bridge, children);
    return bridge;
}

component* make_main_server(const std::vector<setting>& settings = main_server_settings("3")) {
    return make_component("component_struct_info", settings);
}

class ParseComponent : public testing::Test {
protected:
    ParseComponent() {
        parser.init();
        platform.calls.clear();
    }

    int parse(component& given) { return parser.parse_component(platform.handle(), &given); }

    // Destroys the component afterwards.
    int parse(component* given) {
        const std::unique_ptr<component> owned(given);
        return parse(*owned);
    }

    // The value of one column in every row of a table, in the order of the inserts.
    std::vector<std::string> column_of(const std::string& table, const std::string& column) const {
        std::vector<std::string> values;
        for (const recorded_row& row : platform.rows_of(table)) {
            values.push_back(row[column]);
        }
        return values;
    }

    std::vector<std::string> tables() const {
        std::vector<std::string> names;
        for (const recorded_row& row : platform.rows) {
            names.push_back(row.table);
        }
        return names;
    }

    recording_platform platform;
    cds_parser::parser parser;
    component root{0};
};

const std::string no_row = "uint64:18446744073709551615";
const std::string no_server = "uint:4294967295";

}  // namespace

// Dispatch

TEST_F(ParseComponent, OfNoComponentFails) {
    EXPECT_EQ(parser.parse_component(platform.handle(), nullptr), 0);
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(ParseComponent, OfABareComponentSucceedsWithoutARow) {
    EXPECT_EQ(parse(root), 1);
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(ParseComponent, WritesAProcessor) {
    EXPECT_EQ(parse(make_processor()), 1);
    EXPECT_THAT(tables(), ElementsAre("Processor"));
}

TEST_F(ParseComponent, WritesAMemoryDevice) {
    EXPECT_EQ(parse(make_memory()), 1);
    EXPECT_THAT(tables(), ElementsAre("Memory"));
}

TEST_F(ParseComponent, WritesABridge) {
    EXPECT_EQ(parse(make_bridge("1", {})), 1);
    EXPECT_THAT(tables(), ElementsAre("PCIBridge"));
}

TEST_F(ParseComponent, WritesADevice) {
    EXPECT_EQ(parse(make_device()), 1);
    EXPECT_THAT(tables(), ElementsAre("PCIs"));
}

TEST_F(ParseComponent, LeavesOtherComponentsWithoutARow) {
    EXPECT_EQ(parse(make_component("fan_info", {integer("Speed", "1")})), 1);
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(ParseComponent, WritesADeviceThatIsAlsoEverythingElseAsADeviceOnly) {
    component* device = make_device();
    device->add_setting_group(make_group("pci_bridge_info", bridge_settings("2")));
    device->add_setting_group(make_group("memory_info", memory_settings()));
    device->add_setting_group(make_group("cpu_info", processor_settings()));
    EXPECT_EQ(parse(device), 1);
    EXPECT_THAT(tables(), ElementsAre("PCIs"));
}

TEST_F(ParseComponent, WritesADeviceThatIsAlsoAProcessorAsADeviceOnly) {
    component* device = make_device();
    device->add_setting_group(make_group("cpu_info", processor_settings()));
    EXPECT_EQ(parse(device), 1);
    EXPECT_THAT(tables(), ElementsAre("PCIs"));
}

TEST_F(ParseComponent, WritesABridgeThatIsAlsoMemoryAndAProcessorAsABridgeOnly) {
    component* bridge = make_bridge("1", {});
    bridge->add_setting_group(make_group("memory_info", memory_settings()));
    bridge->add_setting_group(make_group("cpu_info", processor_settings()));
    EXPECT_EQ(parse(bridge), 1);
    EXPECT_THAT(tables(), ElementsAre("PCIBridge"));
}

TEST_F(ParseComponent, WritesMemoryThatIsAlsoAProcessorAsMemoryOnly) {
    component* memory = make_memory();
    memory->add_setting_group(make_group("cpu_info", processor_settings()));
    EXPECT_EQ(parse(memory), 1);
    EXPECT_THAT(tables(), ElementsAre("Memory"));
}

TEST_F(ParseComponent, SkipsADeviceWithoutAddressEvenIfItIsAlsoAProcessor) {
    component* device = make_component("pci_device_info");
    device->add_setting_group(make_group("cpu_info", processor_settings()));
    EXPECT_EQ(parse(device), 1);
    EXPECT_THAT(platform.calls, IsEmpty());
}

// Children

TEST_F(ParseComponent, VisitsNoChildrenOfAProcessor) {
    component* processor = make_processor();
    add_children(*processor, {make_memory()});
    EXPECT_EQ(parse(processor), 1);
    EXPECT_THAT(tables(), ElementsAre("Processor"));
}

TEST_F(ParseComponent, VisitsNoChildrenOfAMemoryDevice) {
    component* memory = make_memory();
    add_children(*memory, {make_processor()});
    EXPECT_EQ(parse(memory), 1);
    EXPECT_THAT(tables(), ElementsAre("Memory"));
}

TEST_F(ParseComponent, VisitsNoChildrenOfADevice) {
    component* device = make_device();
    add_children(*device, {make_processor()});
    EXPECT_EQ(parse(device), 1);
    EXPECT_THAT(tables(), ElementsAre("PCIs"));
}

TEST_F(ParseComponent, VisitsTheChildrenOfOtherComponentsInTheOrderOfTheirSlotGroups) {
    add_children(root, {make_processor(), make_memory()});
    add_children(root, {});
    add_children(root, {make_device(), make_processor()});
    EXPECT_EQ(parse(root), 1);
    EXPECT_THAT(tables(), ElementsAre("Processor", "Memory", "PCIs", "Processor"));
}

TEST_F(ParseComponent, WritesABridgeBeforeItsChildren) {
    EXPECT_EQ(parse(make_bridge("1", {make_device()})), 1);
    EXPECT_THAT(tables(), ElementsAre("PCIBridge", "PCIs"));
}

TEST_F(ParseComponent, VisitsGrandchildrenBeforeTheNextChild) {
    auto* shelf = new component(1);
    add_children(*shelf, {make_memory()});
    add_children(root, {shelf, make_processor()});
    EXPECT_EQ(parse(root), 1);
    EXPECT_THAT(tables(), ElementsAre("Memory", "Processor"));
}

TEST_F(ParseComponent, IgnoresTheSettingGroupsOfASlotGroup) {
    add_children(root, {})->add_setting_group(make_group("cpu_info", processor_settings()));
    EXPECT_EQ(parse(root), 1);
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(ParseComponent, SucceedsOnAnEmptySlotGroup) {
    add_children(root, {});
    EXPECT_EQ(parse(root), 1);
}

TEST_F(ParseComponent, FailsOnANullComponentInASlotGroupAndVisitsTheOthers) {
    add_children(root, {make_processor()})->components.push_front(nullptr);
    EXPECT_EQ(parse(root), 0);
    EXPECT_THAT(tables(), ElementsAre("Processor"));
}

TEST_F(ParseComponent, PassesOverANullSlotGroup) {
    root.child_slot_groups.push_back(nullptr);
    add_children(root, {make_processor()});
    EXPECT_EQ(parse(root), 1);
    EXPECT_THAT(tables(), ElementsAre("Processor"));
}

// Failures

TEST_F(ParseComponent, FailsWithEachOfTheWriters) {
    platform.fail("zeb_db_insert");
    EXPECT_EQ(parse(make_processor()), 0);
    EXPECT_EQ(parse(make_memory()), 0);
    EXPECT_EQ(parse(make_bridge("1", {})), 0);
    EXPECT_EQ(parse(make_device()), 0);
}

TEST_F(ParseComponent, VisitsAllSiblingsOfAFailingComponent) {
    add_children(root, {make_processor(), make_memory()});
    add_children(root, {make_device()});
    platform.fail_once("zeb_db_insert", 1);
    EXPECT_EQ(parse(root), 0);
    EXPECT_THAT(tables(), ElementsAre("Processor", "Memory", "PCIs"));
}

TEST_F(ParseComponent, FailsForTheLastComponentAlone) {
    add_children(root, {make_processor(), make_memory()});
    platform.fail_once("zeb_db_insert", 2);
    EXPECT_EQ(parse(root), 0);
}

TEST_F(ParseComponent, FailsForAComponentDeepBelow) {
    component* deepest = make_processor();
    for (int depth = 0; depth < 5; ++depth) {
        auto* above = new component(0);
        add_children(*above, {deepest});
        deepest = above;
    }
    add_children(root, {deepest, make_memory()});
    platform.fail_once("zeb_db_insert", 1);
    EXPECT_EQ(parse(root), 0);
    EXPECT_THAT(tables(), ElementsAre("Processor", "Memory"));
}

TEST_F(ParseComponent, LeavesTheSubtreeOfAFailingBridgeUnwritten) {
    add_children(root, {make_bridge("1", {make_device(), make_bridge("2", {make_memory()})}), make_device("9")});
    platform.fail_once("zeb_db_insert", 1);
    EXPECT_EQ(parse(root), 0);
    EXPECT_THAT(tables(), ElementsAre("PCIBridge", "PCIs"));
    EXPECT_THAT(column_of("PCIs", "BusNo"), ElementsAre("uint:9"));
    EXPECT_THAT(column_of("PCIs", "BridgeId"), ElementsAre(no_row));
}

TEST_F(ParseComponent, OfABridgeFailsWithItsChildren) {
    platform.fail_once("zeb_db_insert", 2);
    EXPECT_EQ(parse(make_bridge("1", {make_device(), make_device("2")})), 0);
    EXPECT_THAT(tables(), ElementsAre("PCIBridge", "PCIs", "PCIs"));
}

TEST_F(ParseComponent, GoesBackToTheOuterBridgeAfterAFailingChild) {
    platform.next_row_id = 10;
    platform.fail_once("zeb_db_insert", 3);
    EXPECT_EQ(parse(make_bridge("1", {make_bridge("2", {make_device("2")}), make_device("1")})), 0);
    EXPECT_THAT(column_of("PCIs", "BridgeId"), ElementsAre("uint64:11", "uint64:10"));
}

TEST_F(ParseComponent, LogsNothingOfItsOwn) {
    add_children(root, {make_processor()});
    platform.fail("zeb_db_insert", 5);
    EXPECT_EQ(parse(root), 0);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: failed to insert Processor (), rc=5"));
}

TEST_F(ParseComponent, LetsAnExceptionOfTheWalkPass) {
    add_children(root, {make_processor()});
    platform.throw_from("zeb_db_insert", std::make_exception_ptr(std::runtime_error("the client is gone")));
    EXPECT_THROW(parse(root), std::runtime_error);
}

// Bridges

TEST_F(ParseComponent, GivesDevicesTheRowIdOfTheInnermostBridge) {
    platform.next_row_id = 10;  // outer bridge 10, its device 11, inner bridge 12, its device 13
    add_children(root, {make_bridge("1", {make_device("1"), make_bridge("2", {make_device("2")}), make_device("3")}),
                        make_device("4")});
    EXPECT_EQ(parse(root), 1);
    EXPECT_THAT(column_of("PCIs", "BusNo"), ElementsAre("uint:1", "uint:2", "uint:3", "uint:4"));
    EXPECT_THAT(column_of("PCIs", "BridgeId"), ElementsAre("uint64:10", "uint64:12", "uint64:10", no_row));
}

TEST_F(ParseComponent, GivesABridgeTheRowIdOfTheBridgeAroundIt) {
    platform.next_row_id = 10;
    add_children(root, {make_bridge("1", {make_bridge("2", {make_bridge("3", {})}), make_bridge("4", {})}),
                        make_bridge("5", {})});
    EXPECT_EQ(parse(root), 1);
    EXPECT_THAT(column_of("PCIBridge", "ParentId"), ElementsAre(no_row, "uint64:10", "uint64:11", "uint64:10", no_row));
}

TEST_F(ParseComponent, GivesMemoryBehindABridgeTheBridgesRowId) {
    platform.next_row_id = 10;
    add_children(root, {make_bridge("1", {make_memory()}), make_memory()});
    EXPECT_EQ(parse(root), 1);
    EXPECT_THAT(column_of("Memory", "ArrayId"), ElementsAre("uint64:10", no_row));
}

TEST_F(ParseComponent, SeesABridgeThroughComponentsWithoutARow) {
    platform.next_row_id = 10;
    auto* riser = new component(1);
    add_children(*riser, {make_device()});
    EXPECT_EQ(parse(make_bridge("1", {riser})), 1);
    EXPECT_THAT(column_of("PCIs", "BridgeId"), ElementsAre("uint64:10"));
}

TEST_F(ParseComponent, WalksTheSubtreeOfABridgeWithoutFunctionNumberAsOutsideAnyBridge) {
    platform.next_row_id = 10;
    add_children(root, {make_bridge("1", {make_bridge_without_function({make_device("1")}), make_device("2")})});
    EXPECT_EQ(parse(root), 1);
    EXPECT_THAT(column_of("PCIs", "BridgeId"), ElementsAre(no_row, "uint64:10"));
}

TEST_F(ParseComponent, IsOutsideEveryBridgeAfterTheWalk) {
    EXPECT_EQ(parse(make_bridge("1", {make_bridge("2", {make_device()})})), 1);
    EXPECT_EQ(parser.parent_id, -1);
    EXPECT_THAT(parser.parent_stack, IsEmpty());
}

TEST_F(ParseComponent, IsOutsideEveryBridgeAfterABridgeThatFails) {
    platform.fail("zeb_db_insert");
    EXPECT_EQ(parse(make_bridge("1", {make_device()})), 0);
    EXPECT_EQ(parser.parent_id, -1);
    EXPECT_THAT(parser.parent_stack, IsEmpty());
}

TEST_F(ParseComponent, KeepsTheWayBackThroughEveryBridgeOnThePath) {
    platform.next_row_id = 10;
    platform.throw_from("zeb_db_content_put_text", std::make_exception_ptr(std::runtime_error("stop here")));
    component* stop = make_component("cpu_info", {text("Serial Number", "1")});
    EXPECT_THROW(parse(make_bridge("1", {make_bridge("2", {make_bridge("3", {}), stop})})), std::runtime_error);
    EXPECT_THAT(parser.parent_stack, ElementsAre(-1, 10));
    EXPECT_EQ(parser.parent_id, 11);
}

// The main server

TEST_F(ParseComponent, TakesTheNodeIndexOfTheMainServer) {
    EXPECT_EQ(parse(make_main_server()), 1);
    EXPECT_EQ(parser.node_index, 3);
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(ParseComponent, TakesNodeIndexZeroFromAMainServerWithoutIndex) {
    parser.node_index = 5;
    EXPECT_EQ(parse(make_main_server({text("comp_type", "EFI_CT_MAIN_SERVER")})), 1);
    EXPECT_EQ(parser.node_index, 0);
}

TEST_F(ParseComponent, TakesNodeIndexZeroFromAMainServerWhoseIndexIsNoNumber) {
    parser.node_index = 5;
    EXPECT_EQ(parse(make_main_server({text("comp_type", "EFI_CT_MAIN_SERVER"), text("slot_index", "3")})), 1);
    EXPECT_EQ(parser.node_index, 0);
}

TEST_F(ParseComponent, CutsTheNodeIndexToItsLow32Bits) {
    EXPECT_EQ(parse(make_main_server({text("comp_type", "EFI_CT_MAIN_SERVER"), hex("slot_index", "0x100000002")})), 1);
    EXPECT_EQ(parser.node_index, 2);
    EXPECT_EQ(parse(make_main_server({text("comp_type", "EFI_CT_MAIN_SERVER"), hex("slot_index", "0xFFFFFFFE")})), 1);
    EXPECT_EQ(parser.node_index, -2);
}

TEST_F(ParseComponent, KeepsTheNodeIndexAtComponentsThatAreNoMainServer) {
    parser.node_index = 5;
    for (const std::string type : {"EFI_CT_PROCESSOR", "EFI_CT_MAIN_SERVER ", " EFI_CT_MAIN_SERVER",
                                   "efi_ct_main_server", "EFI_CT_MAIN_SERVER2", "EFI_CT_MAIN_SERVE", ""}) {
        SCOPED_TRACE(type);
        EXPECT_EQ(parse(make_main_server({text("comp_type", type), integer("slot_index", "3")})), 1);
        EXPECT_EQ(parser.node_index, 5);
    }
}

TEST_F(ParseComponent, KeepsTheNodeIndexAtAComponentWithoutType) {
    parser.node_index = 5;
    EXPECT_EQ(parse(make_main_server({integer("slot_index", "3")})), 1);
    EXPECT_EQ(parser.node_index, 5);
}

TEST_F(ParseComponent, KnowsTheMainServerByTheTextOfItsTypeWhateverTheTypesValueType) {
    const setting type = {"comp_type", "EFI_CT_MAIN_SERVER", cds_parser::setting_node::guid_value};
    EXPECT_EQ(parse(make_main_server({type, integer("slot_index", "3")})), 1);
    EXPECT_EQ(parser.node_index, 3);
}

TEST_F(ParseComponent, LooksForTheMainServerInNoOtherSettingGroup) {
    EXPECT_EQ(parse(make_component("slot_struct_info", main_server_settings("3"))), 1);
    EXPECT_EQ(parser.node_index, -1);
}

TEST_F(ParseComponent, LooksForTheMainServerInTheFirstOfSeveralGroups) {
    component* server = make_main_server();
    server->add_setting_group(make_group("component_struct_info", main_server_settings("4")));
    EXPECT_EQ(parse(server), 1);
    EXPECT_EQ(parser.node_index, 3);
}

TEST_F(ParseComponent, GivesTheNodeIndexToEveryRowBelowTheMainServer) {
    component* server = make_main_server();
    add_children(*server, {make_processor(), make_memory(), make_bridge("1", {make_device()})});
    EXPECT_EQ(parse(server), 1);
    ASSERT_THAT(tables(), ElementsAre("Processor", "Memory", "PCIBridge", "PCIs"));
    for (const recorded_row& row : platform.rows) {
        EXPECT_EQ(row["NodeIndex"], "uint:3") << row.table;
    }
}

TEST_F(ParseComponent, GivesEveryRowTheNodeIndexOfTheMainServerMetLast) {
    component* server = make_main_server();
    add_children(*server, {make_processor()});
    add_children(root, {make_processor(), server, make_processor(), make_main_server(main_server_settings("4")),
                        make_processor()});
    EXPECT_EQ(parse(root), 1);
    EXPECT_THAT(column_of("Processor", "NodeIndex"), ElementsAre(no_server, "uint:3", "uint:3", "uint:4"));
}

TEST_F(ParseComponent, WritesAMainServerThatIsAlsoAProcessorWithItsOwnIndex) {
    component* server = make_main_server();
    server->add_setting_group(make_group("cpu_info", processor_settings()));
    EXPECT_EQ(parse(server), 1);
    EXPECT_THAT(column_of("Processor", "NodeIndex"), ElementsAre("uint:3"));
}

TEST_F(ParseComponent, PutsTheNodeIndexIntoTheDeviceKeyOfFunctions) {
    component* server = make_main_server();
    add_children(*server, {make_device()});
    EXPECT_EQ(parse(server), 1);
    EXPECT_THAT(column_of("PCIs", "DevKey"), ElementsAre("uint:" + std::to_string(0x0301FFFF)));
}

// Visitors

class Visitors : public ParseComponent {
protected:
    cds_parser::parser::component_visitor visit_component{platform.handle(), &parser};
    cds_parser::parser::child_slot_group_visitor visit_group{&visit_component};
    cds_parser::child_slot_group group{1};
};

TEST_F(Visitors, CountNoFailureAtFirst) {
    EXPECT_EQ(visit_component.failures, 0u);
}

TEST_F(Visitors, GiveTheResultOfAComponentThatSucceeds) {
    const std::unique_ptr<component> processor(make_processor());
    EXPECT_EQ(visit_component(processor.get()), 1);
    EXPECT_EQ(visit_component.failures, 0u);
    EXPECT_THAT(tables(), ElementsAre("Processor"));
}

TEST_F(Visitors, AskNoParserAboutANullComponent) {
    visit_component.owner = nullptr;
    EXPECT_EQ(visit_component(nullptr), 0);
    EXPECT_EQ(visit_component.failures, 1u);
}

TEST_F(Visitors, CountAComponentThatFails) {
    platform.fail("zeb_db_insert");
    const std::unique_ptr<component> processor(make_processor());
    EXPECT_EQ(visit_component(processor.get()), 0);
    EXPECT_EQ(visit_component(processor.get()), 0);
    EXPECT_EQ(visit_component.failures, 2u);
}

TEST_F(Visitors, CountANullComponent) {
    EXPECT_EQ(visit_component(nullptr), 0);
    EXPECT_EQ(visit_component.failures, 1u);
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(Visitors, CountAComponentOnceHoweverManyFailBelowIt) {
    platform.fail("zeb_db_insert");
    add_children(root, {make_processor(), make_memory()});
    EXPECT_EQ(visit_component(&root), 0);
    EXPECT_EQ(visit_component.failures, 1u);
}

TEST_F(Visitors, GiveZeroForANullGroupAndCountNothing) {
    EXPECT_EQ(visit_group(nullptr), 0);
    EXPECT_EQ(visit_component.failures, 0u);
}

TEST_F(Visitors, GiveOneForAnEmptyGroup) {
    EXPECT_EQ(visit_group(&group), 1);
    EXPECT_EQ(visit_component.failures, 0u);
}

TEST_F(Visitors, VisitEveryComponentOfAGroupInOrder) {
    group.add_component(make_memory());
    group.add_component(make_processor());
    group.add_component(make_device());
    EXPECT_EQ(visit_group(&group), 1);
    EXPECT_THAT(tables(), ElementsAre("Memory", "Processor", "PCIs"));
    EXPECT_EQ(visit_component.failures, 0u);
}

TEST_F(Visitors, GiveOneForAGroupWhateverItsComponentsGaveAndCountTheirFailures) {
    group.add_component(make_memory());
    group.add_component(make_processor());
    group.components.push_back(nullptr);
    platform.fail_once("zeb_db_insert", 1);
    EXPECT_EQ(visit_group(&group), 1);
    EXPECT_EQ(visit_component.failures, 2u);
    EXPECT_THAT(tables(), ElementsAre("Memory", "Processor"));
}

TEST_F(Visitors, HoldTheirFieldsInOrder) {
    const auto [handle, owner, failures] = visit_component;
    EXPECT_EQ(handle, platform.handle());
    EXPECT_EQ(owner, &parser);
    EXPECT_EQ(failures, 0u);
    const auto [visitor] = visit_group;
    EXPECT_EQ(visitor, &visit_component);
}
