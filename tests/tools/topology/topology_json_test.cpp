// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "support/scratch_file.h"
#include "tools/topology/topology_test.h"

using nlohmann::json;
using testing::ElementsAre;

class TopologyJson : public topology_test {
protected:
    json parts() const { return json::parse(tree_json())["parts"]; }
};

TEST_F(TopologyJson, IsWrittenInThisForm) {
    add_bridge(7, -1, 0, 28, "SndBusNo = 58");
    add_function(3, 7, 58, 1, "SlotDesignation = 'Slot 5'");
    EXPECT_EQ(tree_json(), R"({
  "schema": 2,
  "parts": [
    {
      "type": "bridge",
      "depth": 0,
      "parent": null,
      "problem": null,
      "id": 7,
      "parent_id": null,
      "node": 1,
      "segment": 0,
      "bus": 0,
      "device": 28,
      "function": 0,
      "class_code": null,
      "vendor_id": null,
      "device_id": null,
      "primary_bus": null,
      "secondary_bus": 58,
      "subordinate_bus": null,
      "class": null,
      "subclass": null,
      "vendor_name": null,
      "device_name": null
    },
    {
      "type": "function",
      "depth": 1,
      "parent": 0,
      "problem": null,
      "id": 3,
      "parent_id": 7,
      "node": 1,
      "segment": 0,
      "bus": 58,
      "device": 1,
      "function": 0,
      "class_code": null,
      "vendor_id": null,
      "device_id": null,
      "slot": null,
      "slot_designation": "Slot 5",
      "class": null,
      "subclass": null,
      "vendor_name": null,
      "device_name": null
    }
  ]
}
)");
}

TEST_F(TopologyJson, HoldsTheSchemaNumberAndThePartsInOrder) {
    add_function(1, -1, 0, 2);
    add_bridge(1, -1, 0, 1);
    const auto shown = nlohmann::ordered_json::parse(tree_json());
    std::vector<std::string> keys;
    for (const auto& item : shown.items()) {
        keys.push_back(item.key());
    }
    EXPECT_THAT(keys, ElementsAre("schema", "parts"));
    EXPECT_EQ(shown["schema"], 2);
    EXPECT_EQ(shown["parts"][0]["type"], "bridge");
    EXPECT_EQ(shown["parts"][1]["type"], "function");
}

TEST_F(TopologyJson, TellsOfABridge) {
    add_bridge(7, -1, 0, 28,
               "VendorId = 32902, DevId = 41360, ClsCode = 394240, PriBusNo = 0, SndBusNo = 58, SubBusNo = 63");
    EXPECT_EQ(parts(), json::parse(R"([{"type": "bridge", "depth": 0, "parent": null, "problem": null, "id": 7,
                                        "parent_id": null, "node": 1, "segment": 0, "bus": 0, "device": 28, "function": 0,
                                        "class_code": 394240, "vendor_id": 32902, "device_id": 41360, "primary_bus": 0,
                                        "secondary_bus": 58, "subordinate_bus": 63, "class": "bridge",
                                        "subclass": "PCI", "vendor_name": null, "device_name": null}])"));
}

TEST_F(TopologyJson, TellsOfAFunction) {
    add_function(3, -1, 59, 1,
                 "SegNo = 1, FunctionNo = 7, VendorId = 32902, DeviceId = 5490, ClsCode = 67586, SlotNo = 5, "
                 "SlotDesignation = ' Slot 5'");
    EXPECT_EQ(parts(), json::parse(R"([{"type": "function", "depth": 0, "parent": null, "problem": null, "id": 3,
                                        "parent_id": null, "node": 1, "segment": 1, "bus": 59, "device": 1,
                                        "function": 7, "class_code": 67586, "vendor_id": 32902, "device_id": 5490,
                                        "slot": 5, "slot_designation": " Slot 5", "class": "storage",
                                        "subclass": "NVMe", "vendor_name": null, "device_name": null}])"));
}

TEST_F(TopologyJson, NamesTheParentByItsPlace) {
    add_function(1, -1, 0, 0);
    add_bridge(5, -1, 0, 1);
    add_bridge(6, 5, 1, 0);
    add_function(2, 6, 2, 0);
    const json shown = parts();
    EXPECT_EQ(shown[0]["parent"], nullptr);
    EXPECT_EQ(shown[1]["parent"], nullptr);
    EXPECT_EQ(shown[2]["parent"], 1);
    EXPECT_EQ(shown[2]["depth"], 1);
    EXPECT_EQ(shown[3]["parent"], 2);
    EXPECT_EQ(shown[3]["depth"], 2);
    EXPECT_EQ(shown[3]["parent_id"], 6);
}

TEST_F(TopologyJson, SaysWhyAPartStandsAtTheRoot) {
    add_bridge(1, 1, 0, 0);
    add_function(1, 1, 1, 0);
    add_function(2, 9, 2, 0);
    const json shown = parts();
    EXPECT_EQ(shown[0]["problem"], "missing bridge");
    EXPECT_EQ(shown[0]["parent_id"], 9);
    EXPECT_EQ(shown[1]["problem"], "circle");
    EXPECT_EQ(shown[1]["parent"], nullptr);
    EXPECT_EQ(shown[2]["problem"], nullptr);
}

TEST_F(TopologyJson, IsNestedNoDeeperForADeepTree) {
    execute(
        "INSERT INTO PCIBridge (Id, ParentId) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
        "WHERE i < 10000) SELECT i, i - 1 FROM n");
    const json shown = parts();
    EXPECT_EQ(shown.size(), 10'000u);
    EXPECT_EQ(shown.back()["depth"], 9999);
}

TEST_F(TopologyJson, IsValidWhateverTheTextsHold) {
    add_function(1, -1, 0, 1, "SlotDesignation = CAST(x'22FF5C00C31B' AS TEXT), VendorId = '\"', ClsCode = 1.5");
    const json part = parts()[0];
    EXPECT_EQ(part["slot_designation"], std::string("\"\uFFFD\\\0\uFFFD\033", 10));
    EXPECT_EQ(part["vendor_id"], "\"");
    EXPECT_EQ(part["class"], nullptr);
}

TEST_F(TopologyJson, OfAnEmptyInventoryHoldsAnEmptyList) {
    EXPECT_EQ(json::parse(tree_json()), json::parse(R"({"schema": 2, "parts": []})"));
}

TEST_F(TopologyJson, HoldsTheNamesOfVendorAndDevice) {
    const scratch_file list("8086  Chips \"&\" Inc.\n\t1572  Ether\n");
    use_names(list.path());
    add_function(1, -1, 0, 1, "VendorId = 0x8086, DeviceId = 0x1572");
    EXPECT_EQ(parts()[0]["vendor_name"], "Chips \"&\" Inc.");
    EXPECT_EQ(parts()[0]["device_name"], "Ether");
}
