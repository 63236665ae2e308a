// SPDX-License-Identifier: Apache-2.0

#include "explanation/left_out.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "explanation/explanation.h"
#include "support/cds_hardware.h"
#include "tools/explanation/samples.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

void read(cds_parser::document& document, const std::string& file) {
    std::istringstream in(file);
    document.parse(in);
}

// Of the components below the root of a file.
std::vector<omission> omissions(const std::string& components) {
    cds_parser::document document;
    read(document, cds_file(components));
    std::vector<omission> found;
    for (const left_out_element& each : left_out_of(document)) {
        found.push_back(each.why);
    }
    return found;
}

std::string function_at_3b(const std::vector<setting>& more) {
    return cds_component("pci_device_info", joined(address("3b"), more));
}

// One of several functions of a card of which only the first is recorded.
std::string card_function(const std::string& number, const std::string& slot) {
    return cds_component(
        "pci_device_info",
        {integer("Bus Number", "26"), integer("Device Number", "0"), integer("Function Number", number),
         integer("Location", "1"), integer("Slot Number", slot), hex("Vendor ID", "8086"), hex("Device ID", "56c1")});
}

const std::string unplaced = function_at_3b({});
const std::string without_address = cds_component("pci_bridge_info", {integer("Bus Number", "1")});

}  // namespace

TEST(LeftOut, IsNothingThatHasARow) {
    EXPECT_THAT(omissions(processor("CPU 1") + module("DIMM 1", "4711") + function_at_3b({integer("Location", "1")}) +
                          cds_component("pci_bridge_info", address("1"))),
                IsEmpty());
}

TEST(LeftOut, IsNothingThatHasNothingToRecord) {
    EXPECT_THAT(omissions(cds_component("fan_info", {integer("Speed", "1")})), IsEmpty());
}

TEST(LeftOut, IsAFunctionWithoutALocation) {
    EXPECT_THAT(omissions(unplaced), ElementsAre(omission::no_location));
    EXPECT_THAT(omissions(function_at_3b({hex("Class Code", "010802")})), IsEmpty());
}

TEST(LeftOut, IsWhatHasNoAddress) {
    EXPECT_THAT(omissions(without_address + cds_component("pci_device_info", {integer("Location", "1")})),
                ElementsAre(omission::no_address, omission::no_address));
}

TEST(LeftOut, IsWhatHasNoKnownSetting) {
    EXPECT_THAT(omissions(cds_component("cpu_info", {text("Colour", "red")}) + cds_component("memory_info", {})),
                ElementsAre(omission::nothing_known, omission::nothing_known));
}

TEST(LeftOut, IsEveryFurtherFunctionOfACardThatIsRecordedOnce) {
    cds_parser::document document;
    read(document, cds_file(card_function("0", "3") + card_function("1", "3") + card_function("0", "4")));
    const std::vector<left_out_element> found = left_out_of(document);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].why, omission::recorded_once);
    EXPECT_EQ(found[0].first_of_card, document.root.child_slot_groups.front()->components.front());
}

TEST(LeftOut, IsNoFunctionOfACardInAnotherSlot) {
    EXPECT_THAT(omissions(card_function("0", "3") + card_function("0", "259")), IsEmpty());
}

TEST(LeftOut, HasAFirstFunctionOnlyOfACard) {
    cds_parser::document document;
    read(document, cds_file(card_function("0", "3") + card_function("1", "3") + unplaced));
    const std::vector<left_out_element> found = left_out_of(document);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_NE(found[0].first_of_card, nullptr);
    EXPECT_EQ(found[1].why, omission::no_location);
    EXPECT_EQ(found[1].first_of_card, nullptr);
}

TEST(LeftOut, IsNoFunctionOfACardInAnotherServer) {
    const std::string card = card_function("0", "3");
    for (const std::string index : {"0", "1", "254"}) {
        EXPECT_THAT(omissions(card + server(card, index)), IsEmpty()) << index;
    }
}

TEST(LeftOut, IsWhatStandsBelowARecordThatHasNothingBelow) {
    const auto below_a_processor = [](const std::string& inner) {
        return omissions(cds_component("cpu_info", {text("Socket Designation", "CPU 1")}, inner));
    };
    EXPECT_THAT(below_a_processor(processor("CPU 2")), ElementsAre(omission::not_reached));
    EXPECT_THAT(below_a_processor(cds_component("fan_info", {}, cds_component("fan_info", {}, processor("CPU 2")))),
                ElementsAre(omission::not_reached));
}

TEST(LeftOut, IsAGroupThatStandsInAChildSlotGroup) {
    cds_parser::document document;
    read(document, cds_component(cds_slots(cds_group("cpu_info", {text("Socket Designation", "CPU 1")}))));
    const std::vector<left_out_element> found = left_out_of(document);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].element, document.root.child_slot_groups.front());
}

// The explanation asks the loader itself.
TEST(LeftOut, OfEverySampleIsWhatTheLoaderLeavesOut) {
    expect_of_every_sample([](cds_parser::document& document) {
        const explanation_counts counts = count(explanations_of(document, false));
        EXPECT_EQ(left_out_of(document).size(), counts.components - counts.rows);
    });
}
