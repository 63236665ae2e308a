// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "rows/redaction.h"
#include "tools/listing/listing_test.h"

using nlohmann::json;
using testing::ElementsAre;

class ListingJson : public listing_test {};

TEST_F(ListingJson, IsWrittenInThisForm) {
    EXPECT_EQ(listing_json({{&kinds::memory, {"Id", "DevLocator", "Capacity"}, {{std::int64_t{1}, "A\"1", {}}}},
                            {&kinds::devices, {"Id"}, {}}}),
              "{\n"
              "  \"schema\": 2,\n"
              "  \"memory\": [\n"
              "    {\n"
              "      \"Id\": 1,\n"
              "      \"DevLocator\": \"A\\\"1\",\n"
              "      \"Capacity\": null\n"
              "    }\n"
              "  ],\n"
              "  \"devices\": []\n"
              "}\n");
}

TEST_F(ListingJson, HoldsTheSchemaNumberAndTheKindsInOrder) {
    const auto shown = nlohmann::ordered_json::parse(listing_json(all()));
    std::vector<std::string> keys;
    for (const auto& item : shown.items()) {
        keys.push_back(item.key());
    }
    EXPECT_THAT(keys, ElementsAre("schema", "processors", "memory", "bridges", "devices"));
    EXPECT_EQ(shown["schema"], 2);
}

TEST_F(ListingJson, OfOneKindHoldsNoOther) {
    const json shown = json::parse(listing_json(only(kinds::memory)));
    EXPECT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown["memory"].size(), 2u);
}

TEST_F(ListingJson, HoldsEveryColumnWithItsRawNumber) {
    EXPECT_EQ(
        json::parse(listing_json(only(kinds::bridges)))["bridges"],
        json::parse(R"([{"Id": 1, "ParentId": null, "NodeIndex": 1, "SegNo": 0, "BusNo": 0, "DevNo": 28, "FunNo": 0,
                               "VendorId": 32902, "DevId": 41360, "RevId": 249, "ClsCode": 394240, "PriBusNo": 0,
                               "SndBusNo": 58, "SubBusNo": 63},
                              {"Id": 2, "ParentId": 1, "NodeIndex": 1, "SegNo": 0, "BusNo": 58, "DevNo": 2, "FunNo": 1,
                               "VendorId": null, "DevId": null, "RevId": null, "ClsCode": null, "PriBusNo": null,
                               "SndBusNo": null, "SubBusNo": null}])"));
}

TEST_F(ListingJson, HasTheColumnsOfEachTable) {
    const json shown = json::parse(listing_json(all()));
    EXPECT_EQ(shown["processors"][0].size(), 33u);
    EXPECT_EQ(shown["memory"][0].size(), 32u);
    EXPECT_EQ(shown["bridges"][0].size(), 14u);
    EXPECT_EQ(shown["devices"][0].size(), 30u);
}

TEST_F(ListingJson, WritesCapacitiesUnsignedAndRowReferencesToNothingAsNull) {
    execute("UPDATE Processor SET ProcId = -1");
    execute(
        "UPDATE Memory SET Capacity = -1, MemCapacity = -2, AppDirCap = -3, UnconfigCap = -4, InaccCap = -5, "
        "ReservedCap = -6");
    const json shown = json::parse(listing_json(all()));
    EXPECT_EQ(shown["processors"][0]["ProcId"], 18446744073709551615u);
    const json& module = shown["memory"][0];
    EXPECT_EQ(module["Capacity"], 18446744073709551615u);
    EXPECT_EQ(module["MemCapacity"], 18446744073709551614u);
    EXPECT_EQ(module["AppDirCap"], 18446744073709551613u);
    EXPECT_EQ(module["UnconfigCap"], 18446744073709551612u);
    EXPECT_EQ(module["InaccCap"], 18446744073709551611u);
    EXPECT_EQ(module["ReservedCap"], 18446744073709551610u);
    EXPECT_EQ(module["ArrayId"], nullptr);
    EXPECT_EQ(shown["bridges"][0]["ParentId"], nullptr);
    EXPECT_EQ(shown["devices"][1]["BridgeId"], nullptr);
}

TEST_F(ListingJson, OfAnEmptyInventoryHoldsEmptyLists) {
    load(cds_file(""));
    EXPECT_EQ(json::parse(listing_json(all())),
              json::parse(R"({"schema": 2, "processors": [], "memory": [], "bridges": [], "devices": []})"));
}

TEST_F(ListingJson, OrdersRowsByTheirId) {
    execute("UPDATE Memory SET Id = 9 WHERE Id = 1");
    const json rows = json::parse(listing_json(only(kinds::memory)))["memory"];
    EXPECT_EQ(rows[0]["Id"], 2);
    EXPECT_EQ(rows[1]["Id"], 9);
}

TEST_F(ListingJson, WritesAReplacementCharacterForTextThatIsNotUtf8) {
    execute("UPDATE Processor SET Version = CAST(x'61FF62C3' AS TEXT)");
    EXPECT_EQ(json::parse(listing_json(only(kinds::processors)))["processors"][0]["Version"], "a\uFFFDb\uFFFD");
}

TEST_F(ListingJson, LeavesWhatIsAbsentAbsentWhenItIsRedacted) {
    std::vector<inventory_table> tables = only(kinds::memory);
    redact(tables.front());
    const json shown = json::parse(listing_json(tables))["memory"];
    EXPECT_EQ(shown[0]["SerialNo"], "[redacted]");
    EXPECT_EQ(shown[0]["AssetTag"], nullptr);
}
