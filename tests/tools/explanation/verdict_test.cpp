// SPDX-License-Identifier: Apache-2.0

#include "explanation/verdict.h"

#include <gmock/gmock.h>

#include <memory>

#include "support/tree_builder.h"
#include "tools/explanation/explanation_test.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string absent(const std::string& setting, const std::string& group) {
    return "there is no setting '" + setting + "' in " + group;
}

std::string unusable(const std::string& setting, const std::string& group, const std::string& value) {
    return "the setting '" + setting + "' in " + group + " is negative, too large or no number: " + value;
}

std::string not_below(const std::string& title) {
    return "the loader does not look below the " + title + "; elsewhere this would have been looked at";
}

constexpr const char* address_rule =
    "its address is incomplete; a bus, a device and a function number, none of them negative, would have made a row";
constexpr const char* location_rule =
    "its location is unknown; any 'Location' but 2, or the class code 0x010802 of an NVMe drive, would have made a row";

std::string nothing_known_rule(const std::string& group, const std::string& setting) {
    return "the loader knows none of the settings in " + group + "; any that it knows, such as '" + setting +
           "', would have made a row";
}

std::string slots_rule(const std::string& group) {
    return "the loader looks for " + group + " in components only; in one it would have made a row";
}

// A GPU function of the kind of which a card's first one is recorded.
std::string gpu(const std::string& bus, const std::string& slot) {
    return function(bus, {hex("Vendor ID", "8086"), hex("Device ID", "56C1"), integer("Slot Number", slot)});
}

std::string gpu_line(const std::string& beginning, int slot, int bus, const std::string& end) {
    return "CDS PARSER: pcie_dev " + beginning + " Intel GUP Flex 140 vendorid 32902 device id 22209 slot " +
           std::to_string(slot) + " seg_num 0 bus " + std::to_string(bus) + " dev_num 0 fun_num 0 " + end;
}

std::string gpu_line_of_any(int slot, int bus) {
    return "CDS PARSER: pcie_dev Intel GUP Flex 140 vendorid 32902 device id 22209 slot " + std::to_string(slot) +
           " seg_num 0 bus " + std::to_string(bus) + " dev_num 0 fun_num 0  will be insert.";
}

}  // namespace

class Verdict : public explanation_test {
protected:
    // Expects that a component with these settings in `group` is incomplete by the rule about addresses for these
    // reasons.
    void expect_incomplete(const std::string& group, const std::vector<setting>& settings,
                           const std::vector<std::string>& missing, std::vector<std::string> reasons) const {
        reasons.insert(reasons.begin(), address_rule);
        const json of = told_of(cds_component(group, settings));
        EXPECT_EQ(of["result"], "incomplete");
        EXPECT_EQ(of["missing_settings"], json(missing));
        EXPECT_EQ(of["reasons"], json(reasons));
        EXPECT_EQ(of["row"], nullptr);
        EXPECT_THAT(of["log"], IsEmpty());
    }

    void expect(const json& of, const std::string& path, const std::string& result,
                const std::vector<std::string>& reasons) const {
        EXPECT_EQ(of["path"], path);
        EXPECT_EQ(of["result"], result) << of;
        EXPECT_EQ(of["reasons"], json(reasons)) << of;
    }
};

TEST_F(Verdict, OfAProcessorAreThatNoSettingIsKnown) {
    const json of = told_of(cds_component("cpu_info", {text("Color", "red")}));
    expect(of, path_of(1), "nothing_known", {nothing_known_rule("cpu_info", "Socket Designation")});
    EXPECT_THAT(of["missing_settings"], IsEmpty());
}

TEST_F(Verdict, OfAMemoryDeviceAreThatNoSettingIsKnown) {
    expect(told_of(cds_component("memory_info", {})), path_of(1), "nothing_known",
           {nothing_known_rule("memory_info", "Slot Number")});
}

TEST_F(Verdict, OfAnOrdinaryModuleAreThatItHasSettingsOfPersistentOnesOnly) {
    const json of = told_of(cds_component("memory_info", {integer("Capacity", "1")}));
    EXPECT_EQ(of["result"], "nothing_known");
    EXPECT_EQ(of["row"], nullptr);
}

TEST_F(Verdict, WithoutARuleAreTheSettingsAlone) {
    const std::unique_ptr<cds_parser::component> judged(
        make_component("pci_bridge_info", {integer("Bus Number", "1"), integer("Device Number", "0")}));
    counterfactual doubts;
    const verdict given = verdict_on(*judged, find_known_group("pci_bridge_info"), {}, nullptr, doubts);
    EXPECT_EQ(given.became, fate::incomplete);
    EXPECT_THAT(given.reasons, ElementsAre(absent("Function Number", "pci_bridge_info")));
}

TEST_F(Verdict, OfABridgeAreAllSettingsThatItLacks) {
    expect_incomplete("pci_bridge_info", {hex("Vendor ID", "8086")}, {"Bus Number", "Device Number", "Function Number"},
                      {absent("Bus Number", "pci_bridge_info"), absent("Device Number", "pci_bridge_info"),
                       absent("Function Number", "pci_bridge_info")});
}

TEST_F(Verdict, OfAFunctionAreAllSettingsThatItLacks) {
    expect_incomplete("pci_device_info", {integer("Location", "1")}, {"Bus Number", "Device Number", "Function Number"},
                      {absent("Bus Number", "pci_device_info"), absent("Device Number", "pci_device_info"),
                       absent("Function Number", "pci_device_info")});
}

TEST_F(Verdict, OfABridgeAreOnlyTheSettingsThatItLacks) {
    expect_incomplete("pci_bridge_info", {integer("Bus Number", "1"), integer("Device Number", "0")},
                      {"Function Number"}, {absent("Function Number", "pci_bridge_info")});
}

TEST_F(Verdict, OfAFunctionAreOnlyTheSettingsThatItLacks) {
    expect_incomplete("pci_device_info", {integer("Bus Number", "1"), integer("Function Number", "0")},
                      {"Device Number"}, {absent("Device Number", "pci_device_info")});
}

TEST_F(Verdict, AreNegativeNumbers) {
    expect_incomplete("pci_bridge_info",
                      {integer("Bus Number", "-1"), integer("Device Number", "0"), integer("Function Number", "0")},
                      {"Bus Number"}, {unusable("Bus Number", "pci_bridge_info", "integer_value '-1'")});
    expect_incomplete("pci_device_info",
                      {integer("Bus Number", "1"), integer("Device Number", "0"), integer("Function Number", "-2")},
                      {"Function Number"}, {unusable("Function Number", "pci_device_info", "integer_value '-2'")});
}

TEST_F(Verdict, AreNumbersThatAreNegativeIn32Bits) {
    expect_incomplete("pci_bridge_info",
                      {hex("Bus Number", "FFFFFFFF"), integer("Device Number", "0"), integer("Function Number", "0")},
                      {"Bus Number"}, {unusable("Bus Number", "pci_bridge_info", "hex_value 'FFFFFFFF'")});
}

TEST_F(Verdict, AreNumbersGivenAsText) {
    expect_incomplete("pci_bridge_info",
                      {text("Bus Number", "1"), text("Device Number", "a&#10;b"), integer("Function Number", "0")},
                      {"Bus Number", "Device Number"},
                      {unusable("Bus Number", "pci_bridge_info", "text_value '1'"),
                       unusable("Device Number", "pci_bridge_info", "text_value 'a\\nb'")});
}

TEST_F(Verdict, AreNumbersGivenAsTextAmongMissingOnes) {
    expect_incomplete(
        "pci_device_info", {text("Device Number", "0"), integer("Bus Number", "1")},
        {"Device Number", "Function Number"},
        {unusable("Device Number", "pci_device_info", "text_value '0'"), absent("Function Number", "pci_device_info")});
}

TEST_F(Verdict, OfEveryComponentAreItsOwn) {
    const std::vector<setting> without_function = {integer("Bus Number", "1"), integer("Device Number", "0")};
    const std::vector<setting> without_device = {integer("Bus Number", "1"), integer("Function Number", "0")};
    const json all =
        told(cds_component("pci_bridge_info", without_function) + cds_component("pci_bridge_info", without_device) +
             cds_component("pci_device_info", without_function) + cds_component("pci_device_info", without_device) +
             cds_component("pci_device_info", joined(without_device, {text("Device Number", "1")})) +
             cds_component("pci_device_info", joined(without_device, {integer("Device Number", "-1")})) +
             cds_component("pci_device_info", {integer("Device Number", "1"), integer("Function Number", "0")}));
    EXPECT_THAT(all[0]["missing_settings"], ElementsAre("Function Number"));
    EXPECT_THAT(all[1]["missing_settings"], ElementsAre("Device Number"));
    EXPECT_THAT(all[2]["missing_settings"], ElementsAre("Function Number"));
    EXPECT_THAT(all[3]["missing_settings"], ElementsAre("Device Number"));
    EXPECT_THAT(all[4]["reasons"],
                ElementsAre(address_rule, unusable("Device Number", "pci_device_info", "text_value '1'")));
    EXPECT_THAT(all[5]["reasons"],
                ElementsAre(address_rule, unusable("Device Number", "pci_device_info", "integer_value '-1'")));
    EXPECT_THAT(all[6]["reasons"], ElementsAre(address_rule, absent("Bus Number", "pci_device_info")));
}

// The loader goes on below a bridge that gets no row, as if it were not there.
TEST_F(Verdict, OfABridgeWithoutARowKeepNothingBelowItFromItsRow) {
    const json all = told(bridge("1", {}, cds_component("pci_bridge_info", {}, function("2"))));
    EXPECT_EQ(all[0]["result"], "recorded");
    EXPECT_EQ(all[1]["result"], "incomplete");
    EXPECT_EQ(all[2]["result"], "recorded");
    EXPECT_EQ(all[2]["row"]["BridgeId"], nullptr);
}

TEST_F(Verdict, OfAFunctionWithoutALocationAreTheRuleAndTheSetting) {
    const json of = told_of(cds_component("pci_device_info", address("B")));
    const std::string line = "CDS PARSER: Device on slot -1 bus 11 doesn't have valid location info.";
    expect(of, path_of(1), "refused", {location_rule, "there is no setting 'Location' in pci_device_info"});
    EXPECT_EQ(of["log"], json({{{"level", "warning"}, {"text", line}}}));
    EXPECT_EQ(of["missing_settings"], json({"Location"}));
    EXPECT_EQ(of["table"], nullptr);
}

TEST_F(Verdict, OfAFunctionWithAnUnknownLocationAreTheRuleAndTheValue) {
    const json of = told_of(cds_component(
        "pci_device_info", joined(address("1"), {integer("Location", "2"), integer("Slot Number", "7")})));
    expect(of, path_of(1), "refused",
           {location_rule, "the setting 'Location' in pci_device_info is integer_value '2'"});
}

TEST_F(Verdict, AreNoneOfADriveWithoutALocation) {
    const json of = told_of(cds_component("pci_device_info", joined(address("1"), {hex("Class Code", "10802")})));
    expect(of, path_of(1), "recorded", {});
}

TEST_F(Verdict, OfASecondFunctionOfAGpuCardAreTheCardAndItsFirstFunction) {
    const json all = told(gpu("1", "5") + gpu("2", "5") + gpu("3", "6"));
    expect(all[0], path_of(1), "recorded", {});
    expect(
        all[1], path_of(2), "refused",
        {"the card at slot 5 is recorded once, by its first function 0000:01:00.0; at a slot of its own it would have "
         "made a row"});
    EXPECT_EQ(all[1]["log"], json({{{"level", "warning"}, {"text", gpu_line_of_any(5, 2)}},
                                   {{"level", "warning"}, {"text", gpu_line("Ignore", 5, 2, "")}}}));
    expect(all[2], path_of(3), "recorded", {});
    EXPECT_EQ(all[2]["row"]["Id"], 2);
}

TEST_F(Verdict, OfASecondFunctionWithoutASlotIsOfTheCardAtSlotMinusOne) {
    for (const std::vector<setting>& slot : {std::vector<setting>{}, {text("Slot Number", "here")}}) {
        const std::vector<setting> of_card = joined({hex("Vendor ID", "8086"), hex("Device ID", "56C1")}, slot);
        const json all = told(function("1", of_card) + function("2", of_card));
        EXPECT_EQ(all[0]["result"], "recorded");
        EXPECT_EQ(all[1]["reasons"].at(0),
                  "the card at slot -1 is recorded once, by its first function 0000:01:00.0; at a slot of its own it "
                  "would have made a row");
    }
}

TEST_F(Verdict, AreNoneOfTheSameGpuCardInAnotherNode) {
    const json all = told(server(gpu("1", "5"), "1") + server(gpu("1", "5"), "2"));
    EXPECT_EQ(all[0]["result"], "recorded");
    EXPECT_EQ(all[1]["result"], "recorded");
}

TEST_F(Verdict, OfARecordedGpuAreNoneAlthoughTheLoaderLogs) {
    const json of = told_of(gpu("1", "5"));
    EXPECT_EQ(of["log"][0]["text"], gpu_line_of_any(5, 1));
    EXPECT_EQ(of["log"][0]["level"], "warning");
    EXPECT_EQ(of["log"][1]["text"], "CDS PARSER: find a PCI device, slot=5, bus=1, funNo=0");
    EXPECT_EQ(of["log"][1]["level"], "info");
    EXPECT_THAT(of["reasons"], IsEmpty());
}

TEST_F(Verdict, OfHardwareBelowAProcessorAreThatTheLoaderDoesNotLookThere) {
    const json all = told(cds_component("cpu_info", {text("Socket Designation", "CPU 1")}, module("A1", "S1")));
    ASSERT_EQ(all.size(), 2u);
    expect(all[0], path_of(1), "recorded", {});
    expect(all[1], path_of(1, path_of(1)), "not_reached", {not_below("processor 'CPU 1'")});
}

TEST_F(Verdict, OfHardwareBelowAMemoryDeviceAreTheSame) {
    const json all = told(cds_component("memory_info", {text("Device Locator", "A1")}, bridge("1")));
    ASSERT_EQ(all.size(), 2u);
    expect(all[1], path_of(1, path_of(1)), "not_reached", {not_below("memory device 'A1'")});
}

TEST_F(Verdict, OfHardwareBelowAFunctionAreTheSame) {
    const json all =
        told(cds_component("pci_device_info", joined(address("1"), {integer("Location", "1")}), processor("CPU 1")));
    ASSERT_EQ(all.size(), 2u);
    expect(all[1], path_of(1, path_of(1)), "not_reached", {not_below("PCI function 0000:01:00.0")});
}

TEST_F(Verdict, OfHardwareBelowSomethingWithoutARowAreTheSame) {
    const json all = told(cds_component("cpu_info", {}, module("A1", "S1")));
    expect(all[1], path_of(1, path_of(1)), "not_reached", {not_below("processor")});
}

TEST_F(Verdict, OfHardwareFarBelowNameTheComponentWhereTheLoaderStops) {
    const json all = told(cds_component("cpu_info", {text("Socket Designation", "CPU 1")},
                                        cds_component(cds_slots(bridge("1", {}, function("2"))))));
    ASSERT_EQ(all.size(), 3u);
    const std::string below = path_of(1, path_of(1, path_of(1)));
    expect(all[1], below, "not_reached", {not_below("processor 'CPU 1'")});
    expect(all[2], path_of(1, below), "not_reached", {not_below("processor 'CPU 1'")});
}

TEST_F(Verdict, OfHardwareThatIsNotReachedAreNotItsSettings) {
    const json all = told(cds_component("cpu_info", {}, cds_component("pci_device_info", {})));
    expect(all[1], path_of(1, path_of(1)), "not_reached", {not_below("processor")});
    EXPECT_THAT(all[1]["missing_settings"], IsEmpty());
}

TEST_F(Verdict, AreNotLookedForWhereThereIsNoHardware) {
    const std::string components = cds_component("cpu_info", {text("Socket Designation", "CPU 1")}, cds_component(""));
    EXPECT_EQ(told(components).size(), 1u);
    const json all = told(components, told_about::everything);
    ASSERT_EQ(all.size(), 3u);
    expect(all[2], path_of(1, path_of(1)), "no_known_group", {});
}

TEST_F(Verdict, AreNoneWhereTheLoaderLooksBelowAnything) {
    const json all = told(cds_component("fan_info", {}, cds_component(cds_slots(bridge("1", {}, module("A1", "S1"))))));
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0]["result"], "recorded");
    EXPECT_EQ(all[1]["result"], "recorded");
    EXPECT_EQ(all[1]["row"]["ArrayId"], 1);
}

// A parent, or a node, is that of the place and not of what came before.
TEST_F(Verdict, AreNoneOfHardwareBehindABridge) {
    const json all = told(bridge("1", {}, module("A1", "S1")) + module("B1", "S2"));
    EXPECT_EQ(all[1]["row"]["ArrayId"], 1);
    EXPECT_EQ(all[2]["row"]["ArrayId"], nullptr);
}

TEST_F(Verdict, LeaveTheNodeOfAServerToWhatFollows) {
    const json all = told(processor("A") + server(processor("B"), "3") + processor("C") + server(processor("D"), "4"));
    EXPECT_EQ(all[0]["row"]["NodeIndex"], nullptr);
    EXPECT_EQ(all[1]["row"]["NodeIndex"], 3);
    EXPECT_EQ(all[2]["row"]["NodeIndex"], 3);
    EXPECT_EQ(all[3]["row"]["NodeIndex"], 4);
}

TEST_F(Verdict, LeaveTheNodeAloneWhereTheLoaderDoesNotLook) {
    const json all = told(cds_component("cpu_info", {}, server(processor("A"), "3")) + processor("B"));
    EXPECT_EQ(all[1]["result"], "not_reached");
    EXPECT_EQ(all[2]["row"]["NodeIndex"], nullptr);
}

TEST_F(Verdict, OfAGroupInASlotGroupAreThatItBelongsIntoAComponent) {
    const json all = explain_json(cds_component(cds_slots(cds_group("memory_info", {text("Device Locator", "A1")}) +
                                                          cds_group("cpu_info") + cds_group("fan"))));
    ASSERT_EQ(all["components"].size(), 1u);
    const json of = all["components"][0];
    expect(of, "/component/child_slot_group[1]", "not_reached", {slots_rule("cpu_info"), slots_rule("memory_info")});
    EXPECT_EQ(of["title"], "child_slot_group");
    EXPECT_THAT(of["groups"], ElementsAre("cpu_info", "memory_info"));
}

TEST_F(Verdict, OfAGroupInASlotGroupThatIsNotReachedAreTheSame) {
    const json all = told(cds_component(cds_group("cpu_info") + cds_slots(cds_group("memory_info"))));
    ASSERT_EQ(all.size(), 2u);
    expect(all[1], path_of(1) + "/child_slot_group[1]", "not_reached", {slots_rule("memory_info")});
}

TEST_F(Verdict, OfAMisspeltGroupAreTheNameThatMayBeMeant) {
    const json of = told_of(cds_component("Memory-Info", {text("Device Locator", "A1")}));
    expect(of, path_of(1), "no_known_group", {"the loader does not record 'Memory-Info'; 'memory_info' may be meant"});
    EXPECT_THAT(of["groups"], IsEmpty());
    EXPECT_EQ(told_of(cds_component("pci_devise_info", {}))["reasons"][0],
              "the loader does not record 'pci_devise_info'; 'pci_device_info' may be meant");
    EXPECT_EQ(told_of(cds_component("pci_birdge_info", {}))["reasons"][0],
              "the loader does not record 'pci_birdge_info'; 'pci_bridge_info' may be meant");
    EXPECT_EQ(told_of(cds_component("cpu_inf", {}))["reasons"][0],
              "the loader does not record 'cpu_inf'; 'cpu_info' may be meant");
}

TEST_F(Verdict, OfAMisspeltGroupAreNotCountedAsHardware) {
    EXPECT_EQ(explain_json(cds_file(cds_component("memry_info", {})))["summary"]["components"], 0);
}

TEST_F(Verdict, AreNoneOfAGroupWithANameOfItsOwn) {
    EXPECT_THAT(told(cds_component("fan_info", {}) + cds_component("gpu_data", {}) + cds_component("info", {})),
                IsEmpty());
}

TEST_F(Verdict, AreNoneOfAMisspeltGroupBesideAKnownOne) {
    const json of =
        told_of(cds_component(cds_group("cpu_info", {text("Socket Designation", "A")}) + cds_group("memry_info")));
    expect(of, path_of(1), "recorded", {});
}

TEST_F(Verdict, OfAMisspeltGroupThatIsNotReachedAreBoth) {
    const json all = told(cds_component("cpu_info", {}, cds_component("memry_info", {})));
    expect(all[1], path_of(1, path_of(1)), "no_known_group",
           {"the loader does not record 'memry_info'; 'memory_info' may be meant", not_below("processor")});
}

TEST_F(Verdict, OfTwoKnownGroupsAreThoseOfTheOneThatTheLoaderTakes) {
    const std::string known_processor = cds_group("cpu_info", {text("Socket Designation", "A")});
    const json all = told(cds_component(known_processor + cds_group("pci_device_info", {integer("Bus Number", "1")})) +
                          cds_component(known_processor + cds_group("memory_info", {text("Color", "red")})));
    expect(all[0], path_of(1), "incomplete",
           {address_rule, absent("Device Number", "pci_device_info"), absent("Function Number", "pci_device_info")});
    EXPECT_EQ(all[0]["title"], "PCI function 0000:01:?.?");
    EXPECT_THAT(all[0]["groups"], ElementsAre("cpu_info", "pci_device_info"));
    expect(all[1], path_of(2), "nothing_known", {nothing_known_rule("memory_info", "Slot Number")});
    EXPECT_EQ(all[1]["title"], "memory device");
}

TEST_F(Verdict, AreNoneOfTwoKnownGroupsWithARow) {
    const json of = told_of(cds_component(cds_group("memory_info", {text("Device Locator", "A1")}) +
                                          cds_group("pci_bridge_info", address("1"))));
    expect(of, path_of(1), "recorded", {});
    EXPECT_EQ(of["table"], "PCIBridge");
}

TEST_F(Verdict, OfTwoGroupsOfOneNameAreThoseOfTheFirst) {
    const json of = told_of(cds_component(cds_group("pci_bridge_info") + cds_group("pci_bridge_info", address("1"))));
    EXPECT_EQ(of["title"], "PCI bridge 0000:?:?.?");
    EXPECT_THAT(of["missing_settings"], ElementsAre("Bus Number", "Device Number", "Function Number"));
    EXPECT_THAT(of["groups"], ElementsAre("pci_bridge_info", "pci_bridge_info"));
}
