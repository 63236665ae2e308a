// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "rows/redaction.h"
#include "tools/difference/difference_test.h"

using json = nlohmann::ordered_json;
using testing::ElementsAre;

namespace {

std::vector<std::string> keys_of(const json& object) {
    std::vector<std::string> keys;
    for (const auto& entry : object.items()) {
        keys.push_back(entry.key());
    }
    return keys;
}

}  // namespace

class DifferenceJson : public difference_test {
protected:
    json same_json() const {
        EXPECT_TRUE(difference().is_same());
        return json::parse(difference_json(difference()));
    }
    json different_json() const {
        EXPECT_FALSE(difference().is_same());
        return json::parse(difference_json(difference()));
    }
};

TEST_F(DifferenceJson, IsWrittenInThisForm) {
    write_both(module("A1", "S1"), module("B1", "S1", {integer("Size in MB", "1024")}));
    new_tables.erase(new_tables.begin() + 2, new_tables.end());
    old_tables.erase(old_tables.begin() + 2, old_tables.end());
    EXPECT_EQ(difference_json(difference()), R"({
  "schema": 2,
  "same": false,
  "processors": {
    "added": [],
    "removed": [],
    "changed": [],
    "moved": [],
    "collisions": [],
    "ambiguous": []
  },
  "memory": {
    "added": [],
    "removed": [],
    "changed": [],
    "moved": [
      {
        "old_identity": {
          "NodeIndex": null,
          "DevLocator": "A1",
          "BankLocator": null
        },
        "identity": {
          "NodeIndex": null,
          "DevLocator": "B1",
          "BankLocator": null
        },
        "columns": {
          "MemSize": {
            "old": null,
            "new": 1024
          }
        }
      }
    ],
    "collisions": [],
    "ambiguous": []
  }
}
)");
}

TEST_F(DifferenceJson, OfEqualInventoriesHasTheSchemaAndNoEntry) {
    write_both(module("A1", "S1"), module("A1", "S1"));
    const json nothing =
        json::parse(R"({"added": [], "removed": [], "changed": [], "moved": [], "collisions": [], "ambiguous": []})");
    EXPECT_EQ(same_json(), (json{{"schema", 2},
                                 {"same", true},
                                 {"processors", nothing},
                                 {"memory", nothing},
                                 {"bridges", nothing},
                                 {"devices", nothing}}));
}

TEST_F(DifferenceJson, KeepsItsOrder) {
    write_both(module("A1", "S1"), module("A2", "S2"));
    const json difference = different_json();
    EXPECT_THAT(keys_of(difference), ElementsAre("schema", "same", "processors", "memory", "bridges", "devices"));
    EXPECT_THAT(keys_of(difference["memory"]),
                ElementsAre("added", "removed", "changed", "moved", "collisions", "ambiguous"));
    EXPECT_THAT(keys_of(difference["memory"]["added"][0]), ElementsAre("identity", "columns"));
}

TEST_F(DifferenceJson, ListsRowsInTheOrderOfTheirInventory) {
    const std::vector<setting> width = {integer("Data Width", "64")};
    write_both(module("A9", "") + module("A1", "") + module("A5", "") + module("C1", "") + module("C9", ""),
               module("B9", "") + module("B1", "") + module("C9", "", width) + module("C1", "", width));
    const json memory = different_json()["memory"];
    EXPECT_EQ(memory["removed"][0]["identity"]["DevLocator"], "A9");
    EXPECT_EQ(memory["removed"][1]["identity"]["DevLocator"], "A1");
    EXPECT_EQ(memory["removed"][2]["identity"]["DevLocator"], "A5");
    EXPECT_EQ(memory["added"][0]["identity"]["DevLocator"], "B9");
    EXPECT_EQ(memory["added"][1]["identity"]["DevLocator"], "B1");
    EXPECT_EQ(memory["changed"][0]["identity"]["DevLocator"], "C9");
    EXPECT_EQ(memory["changed"][1]["identity"]["DevLocator"], "C1");
}

TEST_F(DifferenceJson, GivesAnAddedRowWithEveryColumnButRowIds) {
    write_both("", server(bridge("1", {}, bridge("2", {hex("Vendor ID", "8086")}))));
    const json added = different_json()["bridges"]["added"][1];
    EXPECT_EQ(added["identity"], json::parse(R"({"NodeIndex": 1, "SegNo": 0, "BusNo": 2, "DevNo": 0, "FunNo": 0})"));
    EXPECT_EQ(added["columns"], json::parse(R"({
        "ParentId": "0000:01:00.0", "NodeIndex": 1, "SegNo": 0, "BusNo": 2, "DevNo": 0, "FunNo": 0, "VendorId": 32902,
        "DevId": null, "RevId": null, "ClsCode": null, "PriBusNo": null, "SndBusNo": null, "SubBusNo": null})"));
}

TEST_F(DifferenceJson, GivesARemovedRowInTheSameForm) {
    write_both(module("A1", "S1"), "");
    const json removed = different_json()["memory"]["removed"][0];
    EXPECT_EQ(removed["identity"], json::parse(R"({"NodeIndex": null, "DevLocator": "A1", "BankLocator": null})"));
    EXPECT_EQ(removed["columns"]["SerialNo"], "S1");
    EXPECT_EQ(removed["columns"]["ArrayId"], nullptr);
    EXPECT_FALSE(removed["columns"].contains("Id"));
}

TEST_F(DifferenceJson, GivesOldAndNewValueOfEveryChangedColumnAsTheyAreStored) {
    write_both(processor("CPU 1", {integer("Core Count", "8"), text("Processor Version", "Fast")}),
               processor("CPU 1", {integer("Core Count", "16"), hex("Processor ID", "0x7FFFFFFFFFFFFFFF")}));
    EXPECT_EQ(different_json()["processors"]["changed"], json::parse(R"([{
        "identity": {"NodeIndex": null, "Socket": "CPU 1"},
        "columns": {"ProcId": {"old": null, "new": 9223372036854775807},
                    "Version": {"old": "Fast", "new": null},
                    "CoreCount": {"old": 8, "new": 16}}}])"));
}

TEST_F(DifferenceJson, GivesUnsignedNumbersTheirValue) {
    write_both(processor("CPU 1"), processor("CPU 1", {integer("Processor ID", "-1")}));
    EXPECT_EQ(different_json()["processors"]["changed"][0]["columns"]["ProcId"]["new"], 18446744073709551615u);
}

TEST_F(DifferenceJson, GivesBothIdentitiesOfAMovedPart) {
    write_both(module("A1", "S1", {integer("Slot Number", "1")}), module("B1", "S1", {integer("Slot Number", "2")}));
    EXPECT_EQ(different_json()["memory"]["moved"], json::parse(R"([{
        "old_identity": {"NodeIndex": null, "DevLocator": "A1", "BankLocator": null},
        "identity": {"NodeIndex": null, "DevLocator": "B1", "BankLocator": null},
        "columns": {"SlotNo": {"old": 1, "new": 2}}}])"));
}

TEST_F(DifferenceJson, HasNoColumnsOfAPartThatHasOnlyMoved) {
    write_both(module("A1", "S1"), module("B1", "S1"));
    EXPECT_EQ(different_json()["memory"]["moved"][0]["columns"], json::object());
}

TEST_F(DifferenceJson, CountsTheRecordsOfACollision) {
    write_both(function("1") + function("1"), function("1"));
    EXPECT_EQ(different_json()["devices"]["collisions"],
              json::parse(R"([{"identity": {"NodeIndex": null, "FunKey": 65536}, "old": 2, "new": 1}])"));
}

TEST_F(DifferenceJson, CountsTheRecordsOfACollisionThatOnlyTheNewInventoryHas) {
    write_both("", function("1") + function("1"));
    EXPECT_EQ(different_json()["devices"]["collisions"],
              json::parse(R"([{"identity": {"NodeIndex": null, "FunKey": 65536}, "old": 0, "new": 2}])"));
}

TEST_F(DifferenceJson, NamesTheRecordsOfASharedSerialNumber) {
    write_both(processor("1", {text("Serial Number", "S1")}) + processor("2", {text("Serial Number", "S1")}),
               processor("3", {text("Serial Number", "S1")}));
    EXPECT_EQ(different_json()["processors"]["ambiguous"], json::parse(R"([{
        "old": [{"NodeIndex": null, "Socket": "1"}, {"NodeIndex": null, "Socket": "2"}],
        "new": [{"NodeIndex": null, "Socket": "3"}]}])"));
}

TEST_F(DifferenceJson, IsValidWhateverATextHolds) {
    write_both(module("A1", "S1"), module("A1", "S1"));
    put(new_tables, kinds::memory, "PartNo", "\"\uFFFD\\\n");
    EXPECT_EQ(different_json()["memory"]["changed"][0]["columns"]["PartNo"]["new"], "\"\uFFFD\\\n");
}

TEST_F(DifferenceJson, HidesWhatIsRedacted) {
    write_both(module("A1", "S1"), module("B1", "S1", {text("Asset Tag", "T1")}) + module("B2", "S2"));
    comparison compared = difference();
    for (table_difference& each : compared.kinds) {
        redact(each.old_table);
        redact(each.new_table);
    }
    const json memory = json::parse(difference_json(compared))["memory"];
    EXPECT_EQ(memory["moved"][0]["columns"], json::parse(R"({"AssetTag": {"old": null, "new": "[redacted]"}})"));
    EXPECT_EQ(memory["added"][0]["columns"]["SerialNo"], "[redacted]");
}
