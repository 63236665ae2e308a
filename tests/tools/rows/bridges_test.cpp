// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <string>

#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "tools/rows/described_kind.h"

using testing::ElementsAre;

TEST(Bridges, AreListedWithTheseColumns) {
    EXPECT_EQ(listed_texts(kinds::bridges),
              "Id: 1\n"
              "Node: 3\n"
              "Parent: 2\n"
              "Address: 0004:05:06.7\n"
              "Vendor:dev: 0008:0009\n"
              "Name: a name\n"
              "Revision: 0x0a\n"
              "Class: 0x00000b\n"
              "Kind: a kind\n"
              "Primary bus: 0c\n"
              "Bus range: 0d-0e\n");
}

TEST(Bridges, AreShownInTheseUnits) {
    EXPECT_EQ(texts_with_units(kinds::bridges),
              "SegNo: 0004\n"
              "BusNo: 05\n"
              "DevNo: 06\n"
              "VendorId: 0x0008\n"
              "DevId: 0x0009\n"
              "RevId: 0x0a\n"
              "ClsCode: 0x00000b\n"
              "PriBusNo: 0c\n"
              "SndBusNo: 0d\n"
              "SubBusNo: 0e\n");
}

TEST(Bridges, AreToldApartByTheseColumns) {
    const row_identity& identity = kinds::bridges.description().identity;
    EXPECT_THAT(identity.columns, ElementsAre("NodeIndex", "SegNo", "BusNo", "DevNo", "FunNo"));
    EXPECT_THAT(identity.columns_without_node, ElementsAre("SegNo", "BusNo", "DevNo", "FunNo"));
}

TEST(Bridges, AreCalledByTheseNames) {
    EXPECT_EQ(std::string(kinds::bridges.description().part_name), "PCI bridge");
    EXPECT_EQ(kinds::bridges.description().name_setting, nullptr);
}
