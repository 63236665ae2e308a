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
    EXPECT_EQ(with_advice(SQLITE_NOTADB, "open"), "open; name another file with --database");
    EXPECT_EQ(with_advice(SQLITE_READONLY, "open"),
              "open; make it and its folder writable or name another file with --database");
    EXPECT_EQ(with_advice(SQLITE_FULL, "commit"), "commit; make room and try again");
    EXPECT_EQ(with_advice(SQLITE_CORRUPT, "open"), "open; name another file with --database or load into a new one");
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

TEST_F(NewDatabase, IsNotToBeMadeWhereFortyLinksLeadIntoNoFolder) {
    std::string next = "none/target.db";
    for (int i = 0; i < 40; ++i) {
        const std::string link = "link" + std::to_string(i);
        fs::create_symlink(next, folder_.file(link));
        next = link;
    }
    EXPECT_THAT([&] { is_to_be_made(folder_.file(next)); },
                testing::ThrowsMessage<failure>(testing::HasSubstr("': No such file or directory")));
}

TEST_F(NewDatabase, IsNotToBeMadeOfALinkToItself) {
    fs::create_symlink("inventory.db", path_);
    EXPECT_THAT([&] { is_to_be_made(path_); }, testing::ThrowsMessage<failure>("cannot make database '" + path_ +
                                                                               "': Too many levels of symbolic links"));
    EXPECT_THROW(make_database(path_, source_), failure);
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

TEST_F(NewDatabase, IsNotMadeOfWhatIsNoDatabase) {
    std::ofstream(path_) << std::string(4096, 'x');
    EXPECT_THAT([&] { make_database(path_, source_); },
                testing::ThrowsMessage<failure>(
                    "begin a transaction: file is not a database; name another file with --database"));
}

TEST_F(NewDatabase, IsNotMadeOfADatabaseThatIsCutOff) {
    std::ofstream(path_).flush();
    sqlite_database(path_).run("CREATE TABLE Fans (Name TEXT); INSERT INTO Fans VALUES (zeroblob(20000))");
    fs::resize_file(path_, 4096);
    EXPECT_THAT([&] { make_database(path_, source_); },
                testing::ThrowsMessage<failure>("begin a transaction: database disk image is malformed; name another "
                                                "file with --database or load into a new one"));
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

TEST(RequiredInventory, IsNotBelowAFile) {
    const scratch_folder folder;
    std::ofstream(folder.file("x")).flush();
    EXPECT_THAT(
        [&] { require_inventory(folder.file("x/y.db")); },
        testing::ThrowsMessage<failure>("cannot read database '" + folder.file("x/y.db") + "': Not a directory"));
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

TEST(ForeignDatabase, IsRefusedAlsoWhereItsTableHasTheNameOfOneOfOurKinds) {
    const scratch_folder folder;
    const std::string path = folder.file("minds.db");
    std::ofstream(path).flush();
    sqlite_database(path).run("CREATE TABLE memory (Age INTEGER); CREATE TABLE Minds (Name TEXT)");
    EXPECT_THROW(refuse_foreign_database(path), failure);
}

TEST(ForeignDatabase, IsNoneThatCannotBeRead) {
    const scratch_folder folder;
    const std::string path = folder.file("x.db");
    std::ofstream(path) << std::string(4096, 'x');
    EXPECT_NO_THROW(refuse_foreign_database(path));
    EXPECT_NO_THROW(require_inventory(path));
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
