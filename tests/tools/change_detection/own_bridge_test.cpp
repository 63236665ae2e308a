// SPDX-License-Identifier: Apache-2.0

#include "change_detection/own_bridge.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "console/failure.h"
#include "support/captured_stderr.h"
#include "tools/memory_rows.h"

namespace {

std::string recording_problem(const memory_rows& rows) {
    const captured_stderr log;
    try {
        record_own_bridge(rows.database.handle());
    } catch (const failure& problem) {
        return problem.what();
    }
    return "none";
}

}  // namespace

TEST(OwnBridge, IsKnownByItsPciId) {
    EXPECT_EQ(own_bridge_id(), "1a03:1150");
}

TEST(OwnBridge, IsNoneWhereTheInventoryHasNone) {
    const memory_rows rows;
    rows.execute("INSERT INTO PCIBridge (VendorId, DevId, BusNo) VALUES (6659, 1, 2), (1, 4432, 3)");
    EXPECT_EQ(record_own_bridge(rows.database.handle()), std::nullopt);
}

TEST(OwnBridge, IsNotKnownWithoutTheTableOfBridges) {
    const memory_rows rows;
    rows.execute("DROP TABLE PCIBridge");
    EXPECT_EQ(recording_problem(rows), "query PCIBridge: no such table: PCIBridge");
}

TEST(OwnBridge, IsNotKnownWhereItsRowCannotBeRead) {
    const memory_rows rows;
    rows.execute(
        "DROP TABLE PCIBridge; CREATE VIEW PCIBridge AS SELECT 6659 AS VendorId, 4432 AS DevId, "
        "abs(-9223372036854775808) AS BusNo, 0 AS DevNo, 0 AS FunNo");
    EXPECT_EQ(recording_problem(rows), "query PCIBridge: integer overflow");
}
