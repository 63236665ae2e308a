// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "tools/explanation/explanation_test.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class ExplanationJson : public explanation_test {
protected:
    static std::vector<std::string> keys_of(const json& object) {
        std::vector<std::string> keys;
        for (const auto& entry : object.items()) {
            keys.push_back(entry.key());
        }
        return keys;
    }
};

TEST_F(ExplanationJson, IsWrittenInThisForm) {
    EXPECT_EQ(explanation_json(explanations(
                  cds_file(cds_component("pci_device_info", joined(address("1"), {text("Colour", "red")}))))),
              R"({
  "schema": 2,
  "summary": {
    "components": 1,
    "rows": 0,
    "unused_settings": 1,
    "odd_values": 0
  },
  "components": [
    {
      "path": "/component/child_slot_group[1]/component[1]",
      "title": "PCI function 0000:01:00.0",
      "groups": [
        "pci_device_info"
      ],
      "result": "refused",
      "table": null,
      "row": null,
      "reasons": [
        "its location is unknown; any 'Location' but 2, or the class code 0x010802 of an NVMe drive, would have made a row",
        "there is no setting 'Location' in pci_device_info"
      ],
      "missing_settings": [
        "Location"
      ],
      "unused_settings": [
        {
          "group": "pci_device_info",
          "setting": "Colour",
          "known": false,
          "similar": null
        }
      ],
      "odd_values": [],
      "log": [
        {
          "level": "warning",
          "text": "CDS PARSER: Device on slot -1 bus 1 doesn't have valid location info."
        }
      ]
    }
  ]
}
)");
}

TEST_F(ExplanationJson, HoldsTheSchemaNumberTheSumsAndTheComponents) {
    const json shown = explain_json(cds_file(processor("A", {text("Color", "red")}) + cds_component("cpu_info", {})));
    EXPECT_THAT(keys_of(shown), ElementsAre("schema", "summary", "components"));
    EXPECT_EQ(shown["schema"], 2);
    EXPECT_EQ(shown["summary"].dump(), R"({"components":2,"rows":1,"unused_settings":1,"odd_values":0})");
    EXPECT_EQ(shown["components"].size(), 2u);
}

TEST_F(ExplanationJson, TellsOfARow) {
    EXPECT_EQ(told_of(server(bridge("1", {hex("Vendor ID", "8086"), text("Colour", "red"), text("VendorID", "1")}))),
              json::parse(R"({
        "path": "/component/child_slot_group[1]/component[1]/child_slot_group[1]/component[1]",
        "title": "PCI bridge 0000:01:00.0",
        "groups": ["pci_bridge_info"],
        "result": "recorded",
        "table": "PCIBridge",
        "row": {"Id": 1, "ParentId": null, "NodeIndex": 1, "SegNo": 0, "BusNo": 1, "DevNo": 0, "FunNo": 0,
                "VendorId": 32902},
        "reasons": [],
        "missing_settings": [],
        "unused_settings": [
            {"group": "pci_bridge_info", "setting": "Colour", "known": false, "similar": null},
            {"group": "pci_bridge_info", "setting": "VendorID", "known": false, "similar": "Vendor ID"}],
        "odd_values": [],
        "log": []})"));
}

TEST_F(ExplanationJson, TellsOfAComponentWithoutARow) {
    EXPECT_EQ(told_of(cds_component("pci_device_info", {integer("Bus Number", "1"), integer("Device Number", "2")})),
              json::parse(R"({
        "path": "/component/child_slot_group[1]/component[1]",
        "title": "PCI function 0000:01:02.?",
        "groups": ["pci_device_info"],
        "result": "incomplete",
        "table": null,
        "row": null,
        "reasons": [
            "its address is incomplete; a bus, a device and a function number, none of them negative, would have made a row",
            "there is no setting 'Function Number' in pci_device_info"],
        "missing_settings": ["Function Number"],
        "unused_settings": [],
        "odd_values": [],
        "log": []})"));
}

TEST_F(ExplanationJson, KeepsTheOrderOfTheFile) {
    const json all = told(processor("B") + bridge("1", {}, module("A1", "S1")) + processor("A"));
    EXPECT_EQ(all[0]["title"], "processor 'B'");
    EXPECT_EQ(all[1]["title"], "PCI bridge 0000:01:00.0");
    EXPECT_EQ(all[2]["title"], "memory device 'A1'");
    EXPECT_EQ(all[3]["title"], "processor 'A'");
}

// "failed" takes a database that refuses a row.
TEST_F(ExplanationJson, HasAWordForEveryResult) {
    const json all =
        told(processor("A") + cds_component("pci_device_info", address("1")) + cds_component("pci_bridge_info", {}) +
                 cds_component("memory_info", {}, module("A1", "S1")),
             told_about::everything);
    std::vector<std::string> results;
    for (const json& of : all) {
        results.push_back(of["result"]);
    }
    EXPECT_THAT(results,
                ElementsAre("no_known_group", "recorded", "refused", "incomplete", "nothing_known", "not_reached"));
}

TEST_F(ExplanationJson, HasAWordForEveryOddity) {
    const json of =
        told_of(function("1", {text("Device ID", "5"), hex("Hotplug", "no"), hex("Slot Type", "1FFFFFFFF")}));
    EXPECT_EQ(of["odd_values"], json::parse(R"([
        {"group": "pci_device_info", "setting": "Device ID", "column": "DeviceId", "problem": "text_for_number",
         "value": "text_value '5'", "stored": 0},
        {"group": "pci_device_info", "setting": "Slot Type", "column": "SlotType", "problem": "too_large",
         "value": "hex_value '1FFFFFFFF'", "stored": 4294967295},
        {"group": "pci_device_info", "setting": "Hotplug", "column": "Hotplug", "problem": "no_number",
         "value": "hex_value 'no'", "stored": 0}])"));
    const json replaced =
        told_of(function("1", {hex("Vendor ID", "1000"), hex("Device ID", "97"), hex("Class Code", "10700"),
                               integer("Location", "0"), integer("Slot Number", "5")}));
    EXPECT_EQ(replaced["odd_values"], json::parse(R"([
        {"group": "pci_device_info", "setting": "Slot Number", "column": "SlotNo", "problem": "replaced",
         "value": "integer_value '5'", "stored": 0}])"));
}

TEST_F(ExplanationJson, GivesNumbersTheirWholeValue) {
    const json of = told_of(processor("A", {integer("Processor ID", "-1"), integer("Core Count", "-1")}));
    EXPECT_EQ(of["row"]["ProcId"], 18446744073709551615u);
    EXPECT_EQ(of["row"]["CoreCount"], 4294967295u);
}

TEST_F(ExplanationJson, IsValidWhateverTheTextsHold) {
    const json of = told_of(cds_component(
        "memory_info", {text("Device Locator", "\"\\\u0085\u2028\u00e9&#10;&lt;"), text("Co\"l\\o&#9;r\u00e9", "")}));
    EXPECT_EQ(of["row"]["DevLocator"], "\"\\\u0085\u2028\u00e9\n<");
    EXPECT_EQ(of["title"], "memory device '\"\\\\x85\u2028\u00e9\\n<'");
    EXPECT_EQ(of["unused_settings"][0]["setting"], "Co\"l\\o\tr\u00e9");
}

TEST_F(ExplanationJson, OfAnEmptyFileHoldsAnEmptyList) {
    EXPECT_EQ(explain_json("<component/>"), json::parse(R"({"schema": 2,
        "summary": {"components": 0, "rows": 0, "unused_settings": 0, "odd_values": 0}, "components": []})"));
}

TEST_F(ExplanationJson, HidesWhatIdentifiesPartsWithRedact) {
    const std::vector<setting> secrets = {text("Serial Number", "SECRET1"), text("Asset Tag", "SECRET2")};
    const std::string file = cds_file(processor("CPU 1", secrets) + cds_component("memory_info", secrets) +
                                      cds_component("cpu_info", {}, module("A1", "SECRET3")));
    std::vector<explanation> all_told = explanations(file, told_about::everything);
    for (explanation& each : all_told) {
        redact(each);
    }
    const std::string shown = explanation_json(all_told);
    EXPECT_THAT(shown, Not(HasSubstr("SECRET")));
    const json all = json::parse(shown)["components"];
    EXPECT_EQ(all[1]["row"]["SerialNo"], "[redacted]");
    EXPECT_EQ(all[1]["row"]["AssetTag"], "[redacted]");
    EXPECT_EQ(all[1]["row"]["Socket"], "CPU 1");
    EXPECT_EQ(all[2]["row"]["SerialNo"], "[redacted]");
    EXPECT_FALSE(all[2]["row"].contains("PartNo"));
    EXPECT_THAT(explain(file, told_about::everything), Not(HasSubstr("SECRET")));
}

TEST_F(ExplanationJson, IsTheSameEveryTime) {
    std::ifstream sample(SAMPLES_DIR "/two-socket-server.xml");
    const std::string file{std::istreambuf_iterator<char>(sample), {}};
    EXPECT_EQ(explanation_json(explanations(file)), explanation_json(explanations(file)));
    EXPECT_THAT(explanation_json(explanations(file)), HasSubstr("\"rows\": 64,"));
}
