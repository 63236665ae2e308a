// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "tools/subcommands/diff_test.h"

using testing::ElementsAre;
using testing::IsEmpty;

// Where the two inventories come from. Both files describe one module, in A1 and in B1.
class DiffSources : public diff_test {
protected:
    DiffSources() { write_both(module("A1", "S1"), module("B1", "S1")); }

    void expect_moved(const std::string& shell_command) const {
        const command_result result = run(shell_command);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "Memory: 1 moved\n> A1 -> B1: serial number S1\n");
        EXPECT_THAT(result.err, IsEmpty());
    }

    void expect_refused(const std::string& arguments, const std::string& message) const {
        const command_result result = diff(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_EQ(result.err, "zebdb-cds: " + message + "\n");
    }
};

TEST_F(DiffSources, MayBeTwoFiles) {
    expect_moved("zebdb-cds diff old.xml new.xml");
}

TEST_F(DiffSources, MayBeADatabaseAndAFile) {
    load("old.xml", "old.db");
    expect_moved("zebdb-cds diff old.db new.xml");
    load("new.xml", "new.db");
    expect_moved("zebdb-cds diff old.xml new.db");
}

TEST_F(DiffSources, MayBeTwoDatabases) {
    load("old.xml", "old.db");
    load("new.xml", "new.db");
    expect_moved("zebdb-cds diff old.db new.db");
}

TEST_F(DiffSources, AreToldApartByContentAndNotByName) {
    load("old.xml", "old.db");
    expect_moved("mv old.db new.db.xml && cp new.xml new.db && zebdb-cds diff new.db.xml new.db");
}

TEST_F(DiffSources, MayBeNamedLikeSpecialDatabases) {
    expect_moved("mv old.xml :memory: && mv new.xml file:x && zebdb-cds diff :memory: file:x");
}

TEST_F(DiffSources, MayBeStandardInput) {
    expect_moved("cat old.xml | zebdb-cds diff - new.xml");
    expect_moved("zebdb-cds diff old.xml - <new.xml");
}

TEST_F(DiffSources, MayBeADatabaseOnStandardInput) {
    load("old.xml", "old.db");
    expect_moved("cat old.db | zebdb-cds diff - new.xml");
    expect_moved("zebdb-cds diff - new.xml <old.db");
}

TEST_F(DiffSources, MayBePipes) {
    load("new.xml", "new.db");
    expect_moved("mkfifo a b; cat old.xml >a & cat new.db >b & zebdb-cds diff a b");
}

TEST_F(DiffSources, AreReadAndNothingElse) {
    load("old.xml", "old.db");
    const std::string database = read("old.db");
    EXPECT_EQ(left_in_tmp("zebdb-cds diff old.db new.xml"), "");
    EXPECT_TRUE(read("old.db") == database);
    EXPECT_THAT(names(), ElementsAre("new.xml", "old.db", "old.xml"));
}

TEST_F(DiffSources, MayBeInAFolderThatMayNotBeWritten) {
    load("old.xml", "old.db");
    std::filesystem::permissions(folder(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    const command_result result = run_unprivileged("zebdb-cds diff old.db new.xml");
    std::filesystem::permissions(folder(), std::filesystem::perms::owner_all);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(DiffSources, AreNotBothStandardInput) {
    expect_refused("- - <old.xml", "only one of the two inventories can be standard input");
}

TEST_F(DiffSources, AreRefusedInTheirOrder) {
    expect_refused("none.xml neither.xml", "cannot read 'none.xml': No such file or directory");
}

TEST_F(DiffSources, AreRefusedWhenMissing) {
    expect_refused("old.xml none.xml", "cannot read 'none.xml': No such file or directory");
}

TEST_F(DiffSources, AreRefusedWhenTheyAreFolders) {
    expect_refused("old.xml .", "cannot read '.': Is a directory");
    expect_refused("old.xml - <.", "cannot read standard input: Is a directory");
}

TEST_F(DiffSources, AreRefusedWhenTheyMayNotBeRead) {
    std::filesystem::permissions(folder() / "new.xml", std::filesystem::perms::none);
    const command_result result = run_unprivileged("zebdb-cds diff old.xml new.xml");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zebdb-cds: cannot read 'new.xml': Permission denied\n");
}

TEST_F(DiffSources, AreRefusedWhenTheyAreNeitherFilesNorDatabases) {
    write("text", "hello\n");
    expect_refused("old.xml text", "cannot read 'text': line 1, column 1: Start tag expected, '<' not found");
    expect_refused("old.xml - <text",
                   "cannot read standard input: line 1, column 1: Start tag expected, '<' not found");
}

TEST_F(DiffSources, AreRefusedWhenTheyAreOtherDatabases) {
    execute("other.db", "CREATE TABLE t (x)");
    expect_refused("other.db new.xml", "cannot read 'other.db': no such table: Processor; it holds no inventory");
    expect_refused("- new.xml <other.db",
                   "cannot read standard input: no such table: Processor; it holds no inventory");
}

TEST_F(DiffSources, AreRefusedWhenTheyAreDamagedDatabases) {
    load("old.xml", "old.db");
    write("cut.db", read("old.db").substr(0, 5000));
    expect_refused("cut.db new.xml", "cannot read 'cut.db': database disk image is malformed");
    expect_refused("- new.xml <cut.db", "cannot read standard input: database disk image is malformed");
}

TEST_F(DiffSources, AreRefusedWhenOneIsNotNamed) {
    expect_refused("old.xml", "NEW is required; see 'zebdb-cds diff --help'");
}

TEST_F(DiffSources, WithoutAnEndAreRefused) {
    expect_refused("old.xml /dev/zero", "cannot read '/dev/zero': it holds more than 256 MiB");
}
