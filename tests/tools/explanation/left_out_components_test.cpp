// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "explanation/component_loader.h"
#include "explanation/counterfactual.h"
#include "explanation/explanation.h"
#include "support/cds_hardware.h"
#include "tools/explanation/samples.h"

using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

struct told_component {
    std::string path;
    std::string title;
    std::string code;
    std::vector<std::string> reasons;

    bool operator==(const told_component& other) const {
        return path == other.path && title == other.title && code == other.code && reasons == other.reasons;
    }
};

void PrintTo(const told_component& told, std::ostream* out) {
    *out << told.path << ": " << told.title << ", " << told.code << ": " << testing::PrintToString(told.reasons);
}

std::vector<told_component> of_the_explanation(cds_parser::document& document) {
    std::vector<told_component> components;
    for (const explanation& told : explanations_of(document, true)) {
        if (is_left_out(told)) {
            components.push_back({told.path, told.title, code_of(told), told.judged.reasons});
        }
    }
    return components;
}

std::vector<told_component> told(cds_parser::document& document, component_loader& loader, counterfactual& doubts) {
    std::vector<told_component> components;
    for (const left_out_component& each : left_out_components(document, loader, doubts)) {
        components.push_back({each.path, each.title, each.code, each.reasons});
    }
    return components;
}

// A further function of a card of which the first one is recorded.
std::string card_function(const std::string& number) {
    return cds_component(
        "pci_device_info",
        {integer("Bus Number", "26"), integer("Device Number", "0"), integer("Function Number", number),
         integer("Location", "1"), integer("Slot Number", "3"), hex("Vendor ID", "8086"), hex("Device ID", "56c1")});
}

}  // namespace

class LeftOutComponents : public testing::Test {
protected:
    void expect_as_explained(const std::string& file, std::size_t count) {
        cds_parser::document document;
        std::istringstream in(file);
        ASSERT_TRUE(document.parse(in));
        const std::vector<told_component> explained = of_the_explanation(document);
        EXPECT_THAT(explained, SizeIs(count));
        EXPECT_THAT(told(document, loader_, doubts_), ElementsAreArray(explained));
    }

    component_loader loader_;
    counterfactual doubts_;
};

TEST_F(LeftOutComponents, AreNoneWhereEverythingHasARow) {
    cds_parser::document document;
    std::istringstream in(cds_file(processor("CPU 1") + module("A1", "1") + bridge("1", {}, function("2"))));
    ASSERT_TRUE(document.parse(in));
    EXPECT_THAT(left_out_components(document, loader_, doubts_), IsEmpty());
}

TEST_F(LeftOutComponents, WithoutALocationOrAnAddressAreToldAsExplained) {
    expect_as_explained(cds_file(bridge("1", {},
                                        cds_component("pci_device_info", address("3")) +
                                            cds_component("pci_device_info", {integer("Location", "1")})) +
                                 cds_component("pci_bridge_info", {integer("Bus Number", "1")}, function("4"))),
                        3);
}

TEST_F(LeftOutComponents, WithoutAKnownSettingAreToldAsExplained) {
    expect_as_explained(cds_file(cds_component("cpu_info", {text("Colour", "red")}) + cds_component("memory_info", {})),
                        2);
}

TEST_F(LeftOutComponents, OfACardThatIsRecordedOnceAreToldAsExplained) {
    expect_as_explained(server(processor("CPU 1") + bridge("1", {}, card_function("0") + card_function("1")), "4"), 1);
}

TEST_F(LeftOutComponents, OfTheSameCardInOtherServersAreOthers) {
    expect_as_explained(cds_file(server(card_function("0"), "1") + server(card_function("0"), "2")), 0);
}

TEST_F(LeftOutComponents, OfCardsInSeveralServersAreToldAsExplained) {
    const std::string card = card_function("0") + card_function("1");
    expect_as_explained(cds_file(server(card, "1") + server(card, "2")), 2);
}

TEST_F(LeftOutComponents, HaveTheWordOfTheirRule) {
    cds_parser::document document;
    std::istringstream in(cds_file(cds_component("pci_device_info", address("3")) +
                                   cds_component("cpu_info", {}, cds_component("fan_info", {}, processor("CPU 2")))));
    ASSERT_TRUE(document.parse(in));
    std::vector<std::string> codes;
    for (const told_component& each : told(document, loader_, doubts_)) {
        codes.push_back(each.code);
    }
    EXPECT_THAT(codes, testing::ElementsAre("no_location", "nothing_known", "not_reached"));
}

TEST_F(LeftOutComponents, ThatStandBelowARecordAreToldAsExplained) {
    expect_as_explained(cds_file(cds_component("cpu_info", {text("Socket Designation", "CPU 1")},
                                               module("A1", "1") + cds_component("fan_info", {}, module("A2", "2")))),
                        2);
}

TEST_F(LeftOutComponents, ThatAreChildSlotGroupsAreToldAsExplained) {
    expect_as_explained(
        cds_component(cds_slots(cds_group("cpu_info", {text("Socket Designation", "CPU 1")}) + processor("CPU 2"))), 1);
}

TEST_F(LeftOutComponents, HaveTheRuleThatKeepsThemOut) {
    cds_parser::document document;
    std::istringstream in(cds_component(cds_slots(cds_group("cpu_info", {text("Socket Designation", "CPU 1")}))));
    ASSERT_TRUE(document.parse(in));
    std::vector<std::optional<omission>> rules;
    for (const explanation& each : explanations_of(document, false)) {
        rules.push_back(each.rule);
    }
    EXPECT_THAT(rules, testing::ElementsAre(omission::not_reached));
}

TEST_F(LeftOutComponents, OfSeveralDocumentsDoNotDependOnThoseBefore) {
    for (int time = 0; time < 2; ++time) {
        expect_as_explained(cds_file(card_function("0") + card_function("1")), 1);
        expect_as_explained(cds_file(card_function("1") + cds_component("pci_device_info", address("3"))), 1);
    }
}

TEST_F(LeftOutComponents, OfEverySampleAreToldAsExplained) {
    expect_of_every_sample([this](cds_parser::document& document) {
        EXPECT_THAT(told(document, loader_, doubts_), ElementsAreArray(of_the_explanation(document)));
    });
}
