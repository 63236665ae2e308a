// SPDX-License-Identifier: Apache-2.0

#include "sources/database_file.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

TEST(WithAdvice, SaysWhatToDoAboutACode) {
    EXPECT_EQ(with_advice(SQLITE_BUSY, "database is locked"),
              "database is locked; another program is using it, try again when that is done");
    EXPECT_EQ(with_advice(SQLITE_FULL, "commit"), "commit; make room and try again");
}

TEST(WithAdvice, GoesByTheCodeAndNotByTheText) {
    EXPECT_EQ(with_advice(SQLITE_ERROR, "database is locked"), "database is locked");
}

TEST(SqliteName, KeepsAPathFromBeingTakenForSomethingElse) {
    EXPECT_EQ(sqlite_name(":memory:"), "./:memory:");
    EXPECT_EQ(sqlite_name("file:x"), "./file:x");
    EXPECT_EQ(sqlite_name("a/b.db"), "a/b.db");
}
