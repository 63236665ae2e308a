// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <string>

#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "tools/rows/described_kind.h"

using testing::ElementsAre;

TEST(Devices, AreListedWithTheseColumns) {
    EXPECT_EQ(listed_texts(kinds::devices),
              "Id: 1\n"
              "Node: 3\n"
              "Bridge: 2\n"
              "Address: 0006:07:08.9\n"
              "Slot: 10\n"
              "Designation: 18\n"
              "Vendor:dev: 000c:000e\n"
              "Name: a name\n"
              "Subsystem: 0010:0011\n"
              "Class: 0x00000d\n"
              "Kind: a kind\n"
              "Lanes: 24/25\n"
              "Link speed: 27 of 26\n"
              "Device key: 0x00000004\n"
              "Function key: 0x00000005\n");
}

TEST(Devices, AreShownInTheseUnits) {
    EXPECT_EQ(texts_with_units(kinds::devices),
              "DevKey: 0x00000004\n"
              "FunKey: 0x00000005\n"
              "SegNo: 0006\n"
              "BusNo: 07\n"
              "DeviceNo: 08\n"
              "VendorId: 0x000c\n"
              "ClsCode: 0x00000d\n"
              "DeviceId: 0x000e\n"
              "RevId: 0x0f\n"
              "SubVendorId: 0x0010\n"
              "SubDeviceId: 0x0011\n"
              "MaxPCIeType: 26\n"
              "PCIeType: 27\n"
              "HardwareId: 0x0000001c\n");
}

TEST(Devices, AreToldApartByTheseColumns) {
    const row_identity& identity = kinds::devices.description().identity;
    EXPECT_THAT(identity.columns, ElementsAre("NodeIndex", "FunKey"));
    EXPECT_THAT(identity.columns_without_node, ElementsAre("FunKey"));
}

TEST(Devices, AreCalledByTheseNames) {
    EXPECT_EQ(std::string(kinds::devices.description().part_name), "PCI function");
    EXPECT_EQ(kinds::devices.description().name_setting, nullptr);
}
