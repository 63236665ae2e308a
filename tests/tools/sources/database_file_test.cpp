// SPDX-License-Identifier: Apache-2.0

#include "sources/database_file.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <optional>

#include "support/scratch_folder.h"
#include "support/sqlite_database.h"

namespace fs = std::filesystem;

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

class NewDatabaseFile : public testing::Test {
protected:
    scratch_folder folder_;
    std::string path_ = folder_.file("inventory.db");
};

TEST_F(NewDatabaseFile, GoesAwayWithItsJournalUnlessItIsKept) {
    {
        const new_database_file file(path_);
        sqlite_database(path_).run("CREATE TABLE Processor (Id INTEGER)");
    }
    EXPECT_FALSE(fs::exists(path_));
    new_database_file(path_).keep();
    EXPECT_TRUE(fs::exists(path_));
}

TEST_F(NewDatabaseFile, StaysWhenAnotherProgramHasFilledIt) {
    {
        const new_database_file file(path_);
        sqlite_database(path_).run("CREATE TABLE Memory (Id INTEGER); INSERT INTO Memory VALUES (1)");
    }
    EXPECT_TRUE(fs::exists(path_));
}

TEST_F(NewDatabaseFile, StaysWhileAnotherProgramFillsIt) {
    std::optional<sqlite_database> other;
    {
        const new_database_file file(path_);
        other.emplace(path_);
        other->run("BEGIN IMMEDIATE; CREATE TABLE Memory (Id INTEGER); INSERT INTO Memory VALUES (1)");
    }
    EXPECT_TRUE(fs::exists(path_));
}

TEST_F(NewDatabaseFile, IsMadeAndTakenAwayWhereALinkLeads) {
    fs::create_symlink("target.db", path_);
    {
        const new_database_file file(path_);
        EXPECT_TRUE(fs::exists(folder_.file("target.db")));
    }
    EXPECT_FALSE(fs::exists(folder_.file("target.db")));
    EXPECT_TRUE(fs::is_symlink(path_));
}

TEST_F(NewDatabaseFile, IsReplacedWhenAnotherProgramTookItAway) {
    std::ofstream(path_) << "something";
    const new_database_file file(path_);
    EXPECT_FALSE(file.was_replaced());
    fs::remove(path_);
    EXPECT_TRUE(file.was_replaced());
}
