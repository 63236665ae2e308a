// SPDX-License-Identifier: Apache-2.0

#include "sources/database_file.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <zeb_db_workstation.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "console/failure.h"
#include "sources/inventory.h"
#include "sources/memory_database.h"
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

class NewDatabase : public testing::Test {
protected:
    NewDatabase() { sqlite_database(source_.sqlite_name()).run("INSERT INTO Memory (DevLocator) VALUES ('DIMM 1')"); }

    static std::vector<std::string> modules_in(const std::string& path) {
        return sqlite_database(path).run("SELECT DevLocator FROM Memory");
    }

    memory_database source_;
    scratch_folder folder_;
    std::string path_ = folder_.file("inventory.db");
};

TEST_F(NewDatabase, IsToBeMadeWhereThereIsNoFileOrAnEmptyOne) {
    EXPECT_TRUE(is_to_be_made(path_));
    EXPECT_FALSE(fs::exists(path_));
    std::ofstream(path_).flush();
    EXPECT_TRUE(is_to_be_made(path_));
    std::ofstream(path_) << "something";
    EXPECT_FALSE(is_to_be_made(path_));
}

TEST_F(NewDatabase, HasEverythingThatItsSourceHas) {
    EXPECT_TRUE(make_database(path_, source_));
    EXPECT_EQ(modules_in(path_), std::vector<std::string>{"DIMM 1"});
    EXPECT_EQ(sqlite_database(path_).run("PRAGMA user_version"),
              std::vector<std::string>{std::to_string(zeb_db_schema_version())});
    EXPECT_FALSE(fs::exists(path_ + "-journal"));
}

TEST_F(NewDatabase, IsMadeOfAnEmptyFile) {
    std::ofstream(path_).flush();
    EXPECT_TRUE(make_database(path_, source_));
    EXPECT_EQ(modules_in(path_), std::vector<std::string>{"DIMM 1"});
}

TEST_F(NewDatabase, IsNotMadeOfOneThatAnotherProgramHasMade) {
    std::ofstream(path_).flush();
    sqlite_database(path_).run("CREATE TABLE Memory (DevLocator TEXT)");
    EXPECT_FALSE(make_database(path_, source_));
    EXPECT_TRUE(modules_in(path_).empty());
}

TEST_F(NewDatabase, IsMadeWhereALinkLeads) {
    fs::create_symlink("target.db", path_);
    EXPECT_TRUE(is_to_be_made(path_));
    EXPECT_TRUE(make_database(path_, source_));
    EXPECT_EQ(modules_in(folder_.file("target.db")), std::vector<std::string>{"DIMM 1"});
    EXPECT_TRUE(fs::is_symlink(path_));
}

TEST_F(NewDatabase, IsNotToBeMadeWhereALinkLeadsIntoNoFolder) {
    fs::create_symlink("none/target.db", path_);
    EXPECT_THROW(is_to_be_made(path_), failure);
}

TEST_F(NewDatabase, IsMadeWhereLinksLeadFromFolderToFolder) {
    fs::create_directories(folder_.file("one"));
    fs::create_directories(folder_.file("two"));
    fs::create_symlink("one/next.db", path_);
    fs::create_symlink("../two/target.db", folder_.file("one/next.db"));
    EXPECT_TRUE(make_database(path_, source_));
    EXPECT_EQ(modules_in(folder_.file("two/target.db")), std::vector<std::string>{"DIMM 1"});
    EXPECT_TRUE(fs::is_symlink(folder_.file("one/next.db")));
}

TEST_F(NewDatabase, IsNotMadeWhereItCannotBeOpened) {
    EXPECT_THAT([&] { make_database(folder_.file("none/inventory.db"), source_); },
                testing::ThrowsMessage<failure>(testing::StartsWith("open: unable to open database file")));
}

namespace {

std::string content_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A database file with its journal as a program leaves them that is killed while it changes every row.
void copy_of_interrupted_write(const std::string& path, const std::string& copy) {
    sqlite_database writer(path);
    writer.run("PRAGMA cache_size = 1; BEGIN; UPDATE Fans SET Name = hex(zeroblob(2000))");
    fs::copy(path, copy);
    fs::copy(path + "-journal", copy + "-journal");
}

}  // namespace

TEST(RequiredInventory, IsAFileThatHoldsOne) {
    const scratch_folder folder;
    const std::string path = folder.file("inventory.db");
    EXPECT_THAT([&] { require_inventory(path); },
                testing::ThrowsMessage<failure>("cannot read database '" + path +
                                                "': No such file or directory; make it with 'zebdb-cds load' or name "
                                                "another with --database"));
    std::ofstream(path).flush();
    EXPECT_THAT([&] { require_inventory(path); },
                testing::ThrowsMessage<failure>("database '" + path +
                                                "' holds no inventory; load one with 'zebdb-cds load' or name another "
                                                "with --database"));
    sqlite_database(path).run("CREATE TABLE Fans (Name TEXT)");
    EXPECT_THAT([&] { require_inventory(path); },
                testing::ThrowsMessage<failure>("database '" + path +
                                                "' is another program's: it has tables, but no inventory; name another "
                                                "with --database"));
}

TEST(RequiredInventory, IsAlsoWhatTheServiceKeepsBesideTheRecords) {
    for (const std::string table : {"PCIAdapter", "InventorySequence", "PendingFirmware"}) {
        const scratch_folder folder;
        const std::string path = folder.file("inventory.db");
        std::ofstream(path).flush();
        sqlite_database(path).run("CREATE TABLE " + table + " (Node INTEGER)");
        EXPECT_NO_THROW(require_inventory(path)) << table;
    }
}

TEST(ForeignDatabase, IsRefusedAlsoWhereItsTableHasTheNameOfOurSource) {
    const scratch_folder folder;
    const std::string path = folder.file("rivers.db");
    std::ofstream(path).flush();
    sqlite_database(path).run("CREATE TABLE Source (River TEXT)");
    EXPECT_THROW(refuse_foreign_database(path), failure);
}

TEST(ForeignDatabase, IsRefusedWithoutRollingBackWhatWasInterruptedInIt) {
    const scratch_folder folder;
    const std::string path = folder.file("fans.db");
    const std::string crashed = folder.file("crashed\t100%?.db");
    std::ofstream(path).flush();
    sqlite_database(path).run(
        "CREATE TABLE Fans (Name TEXT); INSERT INTO Fans WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM "
        "n WHERE i < 500) SELECT 'fan' || i FROM n");
    copy_of_interrupted_write(path, crashed);
    const std::string before = content_of(crashed);
    const std::string journal = content_of(crashed + "-journal");
    EXPECT_THROW(refuse_foreign_database(crashed), failure);
    EXPECT_THROW(inventory(crashed, database_naming::argument), failure);
    EXPECT_TRUE(content_of(crashed) == before);
    EXPECT_TRUE(content_of(crashed + "-journal") == journal);
}
