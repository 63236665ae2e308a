// SPDX-License-Identifier: Apache-2.0

#include "change_detection/service.h"

#include <gtest/gtest.h>

#include <string>

#include "console/failure.h"
#include "sources/library_log.h"
#include "support/captured_stderr.h"
#include "tools/memory_rows.h"

namespace {

const inventory_marks before = {{1, "s"}, {1, "p"}};

// Why the marks cannot be read; "none" where they can.
std::string reading_problem(const memory_rows& rows) {
    const captured_stderr log;
    try {
        read_marks(rows.database.handle());
    } catch (const failure& problem) {
        return problem.what();
    }
    return "none";
}

}  // namespace

TEST(DigestsFailed, NotWhenNothingChanged) {
    EXPECT_FALSE(digests_failed(before, before));
}

TEST(DigestsFailed, NotWhenADigestChangedWithItsSequence) {
    EXPECT_FALSE(digests_failed(before, {{1, "s"}, {2, "q"}}));
    EXPECT_FALSE(digests_failed({}, {{1, "s"}, {1, "p"}}));
}

TEST(DigestsFailed, WhenASequenceChangedAndItsDigestDidNot) {
    EXPECT_TRUE(digests_failed(before, {{2, "s"}, {2, "p"}}));
    EXPECT_TRUE(digests_failed(before, {{2, "s"}, {1, "p"}}));
    EXPECT_TRUE(digests_failed(before, {{1, "s"}, {2, "p"}}));
}

TEST(DigestsFailed, WhenThereIsNoDigest) {
    EXPECT_TRUE(digests_failed({}, {}));
    EXPECT_TRUE(digests_failed(before, {{1, ""}, {1, "p"}}));
    EXPECT_TRUE(digests_failed(before, {{1, "s"}, {1, ""}}));
}

TEST(InventoryMarks, HaveTheSequenceOfEachInventory) {
    const captured_stderr log;
    const memory_rows rows;
    rows.execute("INSERT INTO InventorySequence (Kind, Sequence) VALUES (0, 3), (1, 7)");
    const inventory_marks marks = read_marks(rows.database.handle());
    EXPECT_EQ(marks.system.sequence, 3u);
    EXPECT_EQ(marks.pci.sequence, 7u);
}

TEST(InventoryMarks, BeginWithNoSequence) {
    const captured_stderr log;
    const memory_rows rows;
    const inventory_marks marks = read_marks(rows.database.handle());
    EXPECT_EQ(marks.system.sequence, 0u);
    EXPECT_EQ(marks.pci.sequence, 0u);
}

TEST(InventoryMarks, CannotBeReadWithoutTheirTable) {
    const memory_rows rows;
    rows.execute("DROP TABLE InventorySequence");
    EXPECT_EQ(reading_problem(rows), "query InventorySequence: no such table: InventorySequence");
}

TEST(InventoryMarks, CannotBeReadWhereARowCannot) {
    const memory_rows rows;
    rows.execute(
        "DROP TABLE InventorySequence; CREATE VIEW InventorySequence AS SELECT 0 AS Kind, 1 AS Sequence UNION ALL "
        "SELECT 1, abs(-9223372036854775808)");
    EXPECT_EQ(reading_problem(rows), "query InventorySequence: integer overflow");
}
