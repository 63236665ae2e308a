// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <string>

#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "tools/rows/described_kind.h"

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Memory, AreListedWithTheseColumns) {
    EXPECT_EQ(listed_texts(kinds::memory),
              "Id: 1\n"
              "Node: 3\n"
              "Slot: 4\n"
              "Locator: 9\n"
              "Bank: 10\n"
              "Size: 7 MiB\n"
              "Form factor: proprietary card (8)\n"
              "Type: FEPROM (11)\n"
              "Speed: 14 MT/s\n"
              "Manufacturer: 15\n"
              "Part number: 18\n"
              "Serial number: 16\n"
              "Asset tag: 17\n"
              "Capacity: 20 B\n"
              "Volatile: 21 B\n"
              "App direct: 22 B\n"
              "Firmware: 27\n"
              "Array: 2\n");
}

TEST(Memory, AreShownInTheseUnits) {
    EXPECT_EQ(texts_with_units(kinds::memory),
              "MemSize: 7 MiB\n"
              "FormFactor: proprietary card (8)\n"
              "MemType: FEPROM (11)\n"
              "MaxSpeed: 13 MT/s\n"
              "ClockSpeed: 14 MT/s\n"
              "Capacity: 20 B\n"
              "MemCapacity: 21 B\n"
              "AppDirCap: 22 B\n"
              "UnconfigCap: 23 B\n"
              "InaccCap: 24 B\n"
              "ReservedCap: 25 B\n");
}

TEST(Memory, AreToldApartByTheseColumns) {
    const row_identity& identity = kinds::memory.description().identity;
    EXPECT_THAT(identity.columns, ElementsAre("NodeIndex", "DevLocator", "BankLocator"));
    EXPECT_THAT(identity.columns_without_node, IsEmpty());
}

TEST(Memory, AreCalledByTheseNames) {
    EXPECT_EQ(std::string(kinds::memory.description().part_name), "memory device");
    EXPECT_EQ(std::string(kinds::memory.description().name_setting), "Device Locator");
}
