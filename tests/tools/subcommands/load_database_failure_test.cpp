// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <memory>

#include "support/cds_text.h"
#include "tools/subcommands/command_test.h"
#include "tools/subcommands/one_processor.h"

using testing::EndsWith;
using testing::IsEmpty;

namespace fs = std::filesystem;

class LoadDatabaseFailure : public command_test {
protected:
    LoadDatabaseFailure() { write("x.xml", one_processor); }

    // The part of the message that follows the file's name.
    static void expect_failure(const command_result& result, const std::string& cause) {
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_EQ(result.last_error_line(), "zebdb-cds: cannot load 'x.xml': " + cause);
    }
};

TEST_F(LoadDatabaseFailure, InAMissingFolder) {
    expect_failure(run("zebdb-cds load x.xml --database no/x.db"),
                   "cannot make database 'no/x.db': No such file or directory; make the folder 'no/' first; "
                   "'no/x.db' was not made");
}

TEST_F(LoadDatabaseFailure, InAFolderThatMayNotBeWritten) {
    fs::create_directory(folder() / "fixed");
    fs::permissions(folder() / "fixed", fs::perms::owner_read | fs::perms::owner_exec);
    expect_failure(run_unprivileged("zebdb-cds load x.xml --database fixed/x.db"),
                   "cannot make database 'fixed/x.db': Permission denied; 'fixed/x.db' was not made");
}

TEST_F(LoadDatabaseFailure, InPlaceOfAFolder) {
    fs::create_directory(folder() / "x.db");
    expect_failure(run("zebdb-cds load x.xml --database x.db"),
                   "database 'x.db' is a folder; name a file with --database; 'x.db' is unchanged");
}

TEST_F(LoadDatabaseFailure, InPlaceOfAPipe) {
    ASSERT_EQ(run("mkfifo pipe").status, 0);
    expect_failure(run("zebdb-cds load x.xml --database pipe"),
                   "database 'pipe' is a pipe or a device; name a file with --database; 'pipe' is unchanged");
}

TEST_F(LoadDatabaseFailure, InADatabaseOfAnotherProgram) {
    execute("other.db", "CREATE TABLE Fans (Id INTEGER)");
    const std::string before = read("other.db");
    expect_failure(run("zebdb-cds load x.xml --database other.db"),
                   "database 'other.db' is another program's: it has tables, but no inventory; name another with "
                   "--database; 'other.db' is unchanged");
    EXPECT_EQ(read("other.db"), before);
}

TEST_F(LoadDatabaseFailure, InADatabaseOfAnotherProgramWithATableOfTheSameName) {
    execute("games.db", "CREATE TABLE Memory (Player TEXT, Score INTEGER); INSERT INTO Memory VALUES ('Ann', 12)");
    expect_failure(run("zebdb-cds load x.xml --database games.db"),
                   "database 'games.db' is another program's: it has tables, but no inventory; name another with "
                   "--database; 'games.db' is unchanged");
    EXPECT_EQ(query("games.db", "SELECT Score FROM Memory"), "12");
}

TEST_F(LoadDatabaseFailure, IsNoneWhereOnlyTheServiceHasTables) {
    execute("early.db", "CREATE TABLE pciadapter (Id INTEGER PRIMARY KEY); CREATE TABLE Fans (Id INTEGER)");
    EXPECT_EQ(run("zebdb-cds load x.xml --database early.db").status, 0);
}

TEST_F(LoadDatabaseFailure, InAFileThatIsNoDatabase) {
    const std::string letter(1000, 'a');
    write("letter.txt", letter);
    expect_failure(run("zebdb-cds load x.xml --database letter.txt"),
                   "cannot open inventory database 'letter.txt': file is not a database; "
                   "name another file with --database; 'letter.txt' is unchanged");
    EXPECT_EQ(read("letter.txt"), letter);
}

TEST_F(LoadDatabaseFailure, InADatabaseThatMayNotBeWritten) {
    ASSERT_EQ(run("zebdb-cds load x.xml").status, 0);
    fs::permissions(folder() / "inventory.db", fs::perms::owner_read);
    expect_failure(
        run_unprivileged("zebdb-cds load x.xml"),
        "delete from Processor: attempt to write a readonly database; make it and its folder writable or name "
        "another file with --database; 'inventory.db' is unchanged");
}

TEST_F(LoadDatabaseFailure, InADatabaseThatAnotherProcessHasLocked) {
    ASSERT_EQ(run("zebdb-cds load x.xml").status, 0);
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open((folder() / "inventory.db").c_str(), &connection), SQLITE_OK);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> other(connection, sqlite3_close);
    ASSERT_EQ(sqlite3_exec(connection, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    expect_failure(run("zebdb-cds load x.xml"),
                   "begin a transaction: database is locked; another program is using it, try again when that is done; "
                   "'inventory.db' is unchanged");
}

TEST_F(LoadDatabaseFailure, BecauseOfAFileThatMayNotBeRead) {
    fs::permissions(folder() / "x.xml", fs::perms::none);
    expect_failure(run_unprivileged("zebdb-cds load x.xml"), "Permission denied; 'inventory.db' was not made");
}

// The database stands on a disk of its own, which is gone with the sandbox: what it holds afterwards is looked at
// there.
class LoadOnAFullDisk : public command_test {
protected:
    void SetUp() override {
        if (run_with_disk(100'000, "true").status == no_disk) {
            GTEST_SKIP() << "no file system can be mounted here";
        }
        write("x.xml", one_processor);
    }
};

TEST_F(LoadOnAFullDisk, LeavesNothingInANewDatabaseWhenThereIsNoRoomToCommit) {
    write("many.xml", cds_file(cds_functions(1000, 100)));
    const command_result result =
        run_with_disk(100'000, "zebdb-cds load many.xml --database disk/x.db; echo $?; ls -A disk; wc -c <disk/x.db");
    EXPECT_EQ(result.out, "2\nx.db\n0\n");
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: cannot load 'many.xml': commit: database or disk is full; make room and try again; "
              "'disk/x.db' is empty");
}

TEST_F(LoadOnAFullDisk, LeavesAnExistingDatabaseAsItIsWhenThereIsNoRoomToCommit) {
    write("many.xml", cds_file(cds_functions(1000, 100)));
    const command_result result = run_with_disk(100'000,
                                                "zebdb-cds load x.xml --database disk/x.db >/dev/null && "
                                                "cp disk/x.db before.db &&"
                                                "zebdb-cds load many.xml --database disk/x.db; echo $?;"
                                                "cmp disk/x.db before.db && ls -A disk");
    EXPECT_EQ(result.out, "2\nx.db\n");
    EXPECT_THAT(result.last_error_line(), EndsWith("'disk/x.db' is unchanged"));
}

TEST_F(LoadOnAFullDisk, CommitsNothingWhenTheRoomIsGoneHalfway) {
    write("many.xml", cds_file(cds_functions(800, 4000)));
    const command_result result = run_with_disk(1'000'000,
                                                "zebdb-cds load x.xml --database disk/x.db >/dev/null && "
                                                "cp disk/x.db before.db &&"
                                                "zebdb-cds load many.xml --database disk/x.db; echo $?;"
                                                "cmp disk/x.db before.db && ls -A disk");
    EXPECT_EQ(result.out, "2\nx.db\n");
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: cannot load 'many.xml': insert into PCIs: database or disk is full; make room and try again; "
              "'disk/x.db' is unchanged");
}
