// SPDX-License-Identifier: Apache-2.0

#include "explanation/component_loader.h"

#include <gmock/gmock.h>

#include <memory>

#include "support/tree_builder.h"

using testing::IsEmpty;

namespace {

constexpr std::int64_t no_parent = component_loader::no_parent;

const std::vector<setting> bus_1 = {integer("Bus Number", "1"), integer("Device Number", "0"),
                                    integer("Function Number", "0")};

std::unique_ptr<cds_parser::component> component_with(const char* group, const std::vector<setting>& settings) {
    return std::unique_ptr<cds_parser::component>(make_component(group, settings));
}

}  // namespace

class ComponentLoader : public testing::Test {
protected:
    loaded_component load(const char* group, const std::vector<setting>& settings, std::int64_t parent = no_parent) {
        return loader_.load(*component_with(group, settings), parent);
    }

    component_loader loader_;
};

TEST_F(ComponentLoader, GivesTheOneRowThatAComponentLeaves) {
    const loaded_component loaded = load("cpu_info", {text("Socket Designation", "CPU 1")});
    EXPECT_TRUE(loaded.succeeded);
    ASSERT_TRUE(loaded.row);
    EXPECT_EQ(loaded.row->kind, &kinds::processors);
    EXPECT_EQ(inventory_row(*loaded.row, 0)["Socket"], inventory_value("CPU 1"));
}

TEST_F(ComponentLoader, GivesNoRowOfAnEarlierComponent) {
    load("cpu_info", {text("Socket Designation", "CPU 1")});
    EXPECT_FALSE(load("cpu_info", {}).row);
}

TEST_F(ComponentLoader, NumbersRowsAsALoadOfAllDoes) {
    load("memory_info", {text("Device Locator", "A1")});
    EXPECT_EQ(inventory_row(*load("memory_info", {text("Device Locator", "A2")}).row, 0)["Id"],
              inventory_value(std::int64_t{2}));
}

TEST_F(ComponentLoader, TellsTheParentBelowABridge) {
    EXPECT_EQ(load("pci_bridge_info", bus_1).parent_below, 1);
}

TEST_F(ComponentLoader, TellsTheParentBelowWhatIsNotRecorded) {
    EXPECT_EQ(load("fan_info", {}, 7).parent_below, 7);
}

TEST_F(ComponentLoader, TellsThatTheLoaderDoesNotLookBelowAProcessor) {
    EXPECT_EQ(load("cpu_info", {text("Socket Designation", "CPU 1")}).parent_below, std::nullopt);
}

TEST_F(ComponentLoader, PutsARowBelowItsParent) {
    const auto row = load("memory_info", {text("Device Locator", "A1")}, 7).row;
    EXPECT_EQ(inventory_row(*row, 0)["ArrayId"], inventory_value(std::int64_t{7}));
}

TEST_F(ComponentLoader, KeepsWhatTheLoaderLogs) {
    EXPECT_THAT(load("pci_device_info", bus_1).log.front().text, testing::HasSubstr("valid location info"));
    EXPECT_THAT(load("cpu_info", {}).log, IsEmpty());
}

TEST_F(ComponentLoader, GivesTheRowOfAModuleWhateverItsLocator) {
    EXPECT_TRUE(load("memory_info", {text("Device Locator", "probe")}).row);
}

TEST_F(ComponentLoader, LeavesWhatIsBelowAComponentWhereItWas) {
    const auto above = component_with("fan_info", {});
    cds_parser::child_slot_group* slots = add_children(*above, {make_component("cpu_info")});
    loader_.load(*above, no_parent);
    EXPECT_THAT(above->child_slot_groups, testing::ElementsAre(slots));
}

TEST_F(ComponentLoader, BeginsAgainWithoutTheRowsTheNodeAndTheCardsOfBefore) {
    const std::vector<setting> card = {integer("Bus Number", "26"),     integer("Device Number", "0"),
                                       integer("Function Number", "0"), integer("Location", "1"),
                                       integer("Slot Number", "3"),     hex("Vendor ID", "8086"),
                                       hex("Device ID", "56c1")};
    const auto first = load("pci_device_info", card).row;
    load("component_struct_info", {text("comp_type", "EFI_CT_MAIN_SERVER"), integer("slot_index", "7")});
    loader_.begin_again();
    const auto again = load("pci_device_info", card).row;
    ASSERT_TRUE(again);
    EXPECT_EQ(again->rows, first->rows);
}
