// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <string>

#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "tools/rows/described_kind.h"

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Processors, AreListedWithTheseColumns) {
    EXPECT_EQ(listed_texts(kinds::processors),
              "Id: 1\n"
              "Node: 2\n"
              "Socket: 3\n"
              "Version: 8\n"
              "Cores: 19/18\n"
              "Threads: 20\n"
              "Speed: 12 MHz\n"
              "L3 cache: 31 KiB\n"
              "Processor id: 0x0000000000000007\n"
              "Serial number: 15\n"
              "Asset tag: 16\n");
}

TEST(Processors, AreShownInTheseUnits) {
    EXPECT_EQ(texts_with_units(kinds::processors),
              "ProcId: 0x0000000000000007\n"
              "ExtClock: 10 MHz\n"
              "MaxSpeed: 11 MHz\n"
              "CurSpeed: 12 MHz\n"
              "L1CacheMaxSize: 22 KiB\n"
              "L1CacheInstalled: 23 KiB\n"
              "L2CacheMaxSize: 26 KiB\n"
              "L2CacheInstalled: 27 KiB\n"
              "L3CacheMaxSize: 30 KiB\n"
              "L3CacheInstalled: 31 KiB\n");
}

TEST(Processors, AreToldApartByTheseColumns) {
    const row_identity& identity = kinds::processors.description().identity;
    EXPECT_THAT(identity.columns, ElementsAre("NodeIndex", "Socket"));
    EXPECT_THAT(identity.columns_without_node, IsEmpty());
}

TEST(Processors, AreCalledByTheseNames) {
    EXPECT_EQ(std::string(kinds::processors.description().part_name), "processor");
    EXPECT_EQ(std::string(kinds::processors.description().name_setting), "Socket Designation");
}
