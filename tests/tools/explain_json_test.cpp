#include <gmock/gmock.h>

#include <algorithm>

#include "support/explain_test.h"
#include "support/quoted.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class ExplainJson : public explain_test {
protected:
    static std::vector<std::string> keys_of(const json& object) {
        std::vector<std::string> keys;
        for (const auto& entry : object.items()) {
            keys.push_back(entry.key());
        }
        return keys;
    }
};

TEST_F(ExplainJson, HoldsTheSchemaNumberTheSumsAndTheComponents) {
    const json shown = explain_json(cds_file(processor("A", {text("Color", "red")}) + cds_component("cpu_info", {})));
    EXPECT_THAT(keys_of(shown), ElementsAre("schema", "summary", "components"));
    EXPECT_EQ(shown["schema"], 1);
    EXPECT_EQ(shown["summary"].dump(), R"({"components":2,"rows":1,"unused_settings":1})");
    EXPECT_EQ(shown["components"].size(), 2u);
}

TEST_F(ExplainJson, TellsOfARow) {
    EXPECT_EQ(told_of(server(bridge("1", {hex("Vendor ID", "8086"), text("Colour", "red"), text("VendorID", "1")}))),
              json::parse(R"({
        "path": "/component/child_slot_group[1]/component[1]/child_slot_group[1]/component[1]",
        "title": "PCI bridge 0000:01:00.0",
        "groups": ["pci_bridge_info"],
        "result": "recorded",
        "table": "PCIBridge",
        "row": {"Id": 1, "ParentId": -1, "NodeIndex": 1, "SegNo": 0, "BusNo": 1, "DevNo": 0, "FunNo": 0,
                "VendorId": 32902},
        "reasons": [],
        "missing_settings": [],
        "unused_settings": [
            {"group": "pci_bridge_info", "setting": "Colour", "known": false, "similar": null},
            {"group": "pci_bridge_info", "setting": "VendorID", "known": false, "similar": "Vendor ID"}],
        "log": []})"));
}

TEST_F(ExplainJson, TellsOfAComponentWithoutARow) {
    EXPECT_EQ(told_of(cds_component("pci_device_info", {integer("Bus Number", "1"), integer("Device Number", "2")})),
              json::parse(R"({
        "path": "/component/child_slot_group[1]/component[1]",
        "title": "PCI function 0000:01:02.?",
        "groups": ["pci_device_info"],
        "result": "incomplete",
        "table": null,
        "row": null,
        "reasons": ["there is no setting 'Function Number' in pci_device_info"],
        "missing_settings": ["Function Number"],
        "unused_settings": [],
        "log": []})"));
}

TEST_F(ExplainJson, KeepsTheOrderOfTheFile) {
    const json all = told(processor("B") + bridge("1", {}, module("A1", "S1")) + processor("A"));
    EXPECT_EQ(all[0]["title"], "processor 'B'");
    EXPECT_EQ(all[1]["title"], "PCI bridge 0000:01:00.0");
    EXPECT_EQ(all[2]["title"], "memory device 'A1'");
    EXPECT_EQ(all[3]["title"], "processor 'A'");
}

// "failed" takes a database that refuses a row.
TEST_F(ExplainJson, HasAWordForEveryResult) {
    const json all =
        told(processor("A") + cds_component("pci_device_info", address("1")) + cds_component("pci_bridge_info", {}) +
                 cds_component("memory_info", {}, module("A1", "S1")),
             "--all");
    std::vector<std::string> results;
    for (const json& of : all) {
        results.push_back(of["result"]);
    }
    EXPECT_THAT(results,
                ElementsAre("no_known_group", "recorded", "refused", "incomplete", "nothing_known", "not_reached"));
}

TEST_F(ExplainJson, GivesNumbersTheirWholeValue) {
    const json of = told_of(processor("A", {integer("Processor ID", "-1"), integer("Core Count", "-1")}));
    EXPECT_EQ(of["row"]["ProcId"], 18446744073709551615u);
    EXPECT_EQ(of["row"]["CoreCount"], 4294967295u);
}

TEST_F(ExplainJson, IsValidWhateverTheTextsHold) {
    const json of = told_of(cds_component(
        "memory_info", {text("Device Locator", "\"\\\u0085\u2028\u00e9&#10;&lt;"), text("Co\"l\\o&#9;r\u00e9", "")}));
    EXPECT_EQ(of["row"]["DevLocator"], "\"\\\u0085\u2028\u00e9\n<");
    EXPECT_EQ(of["title"], "memory device '\"\\\\x85\u2028\u00e9\\n<'");
    EXPECT_EQ(of["unused_settings"][0]["setting"], "Co\"l\\o\tr\u00e9");
}

TEST_F(ExplainJson, HidesWhatIdentifiesPartsWithRedact) {
    const std::vector<setting> secrets = {text("Serial Number", "SECRET1"), text("Asset Tag", "SECRET2")};
    const std::string file = cds_file(processor("CPU 1", secrets) + cds_component("memory_info", secrets) +
                                      cds_component("cpu_info", {}, module("A1", "SECRET3")));
    const std::string shown = explain(file, "--format json --redact --all");
    EXPECT_THAT(shown, Not(HasSubstr("SECRET")));
    const json all = json::parse(shown)["components"];
    EXPECT_EQ(all[1]["row"]["SerialNo"], "[redacted]");
    EXPECT_EQ(all[1]["row"]["AssetTag"], "[redacted]");
    EXPECT_EQ(all[1]["row"]["Socket"], "CPU 1");
    EXPECT_EQ(all[2]["row"]["SerialNo"], "[redacted]");
    EXPECT_FALSE(all[2]["row"].contains("PartNo"));
    EXPECT_THAT(explain(file, "--format json"), HasSubstr("SECRET1"));
    EXPECT_THAT(explain(file, "--all"), Not(HasSubstr("SECRET")));
}

TEST_F(ExplainJson, OfAnEmptyFileHoldsAnEmptyList) {
    EXPECT_EQ(explain_json("<component/>"), json::parse(R"({"schema": 1,
        "summary": {"components": 0, "rows": 0, "unused_settings": 0}, "components": []})"));
}

TEST_F(ExplainJson, IsTheSameEveryTime) {
    const std::string sample = "zebdb-cds explain --format json " + quoted(SAMPLES_DIR "/two-socket-server.xml");
    EXPECT_EQ(output(sample), output(sample));
}

// Those of an explanation and those of a load.
class ExplainedRows : public ExplainJson {
protected:
    // With the name of each table, and with the columns that were put only.
    json loaded_rows(const std::string& file) const {
        EXPECT_EQ(run("zebdb-cds load " + file).status, 0);
        const json shown = json::parse(output("zebdb-cds show --format json"));
        json rows = json::object();
        for (const auto& [kind, table] : {std::pair("processors", "Processor"), std::pair("memory", "Memory"),
                                          std::pair("bridges", "PCIBridge"), std::pair("devices", "PCIs")}) {
            rows[table] = json::array();
            for (const json& row : shown[kind]) {
                rows[table].push_back(without_nulls(row));
            }
        }
        return rows;
    }

    json explained_rows(const std::string& file) const {
        json rows = {{"Processor", json::array()},
                     {"Memory", json::array()},
                     {"PCIBridge", json::array()},
                     {"PCIs", json::array()}};
        const json shown = json::parse(output("zebdb-cds explain --format json " + file));
        for (const json& of : shown["components"]) {
            if (!of["row"].is_null()) {
                rows[of["table"].get<std::string>()].push_back(of["row"]);
            }
        }
        return rows;
    }

private:
    static json without_nulls(const json& row) {
        json kept = json::object();
        for (const auto& column : row.items()) {
            if (!column.value().is_null()) {
                kept[column.key()] = column.value();
            }
        }
        return kept;
    }
};

TEST_F(ExplainedRows, AreThoseOfALoadWhateverLiesBetweenThem) {
    const std::string passed_over = cds_component("cpu_info", {}, server(module("X", ""), "7"));
    const std::string nameless = cds_component("pci_bridge_info", {}, module("C1", "") + bridge("9"));
    write("server.xml",
          cds_file(module("A1", "S1") + passed_over + server(module("B1", ""), "2") +
                   bridge("1", {}, nameless + function("3") + module("D1", "") + bridge("4", {}, function("5"))) +
                   function("6") + module("E1", "") + cds_component("memory_info", {}) + module("F1", "")));
    EXPECT_EQ(explained_rows("server.xml"), loaded_rows("server.xml"));
}

class ExplainedSample : public ExplainedRows, public testing::WithParamInterface<const char*> {};

TEST_P(ExplainedSample, HasTheRowsOfALoad) {
    const std::string file = quoted(SAMPLES_DIR + std::string("/") + GetParam() + ".xml");
    EXPECT_EQ(explained_rows(file), loaded_rows(file));
}

// gtest takes no dashes in names.
std::string sample_name(const testing::TestParamInfo<const char*>& tested) {
    std::string name = tested.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Of, ExplainedSample,
                         testing::Values("minimal", "no-hardware", "tolerated", "two-socket-server"), sample_name);
