// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "support/quoted.h"
#include "tools/subcommands/diff_test.h"
#include "tools/subcommands/tree_test.h"

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

// Where the inventory comes from. The file describes a function at 0000:02:00.0; the database has one at 0000:01:01.0.
class TreeSources : public tree_test {
protected:
    TreeSources() {
        write("x.xml", cds_file(memory_module + function("2")));
        add_function(1, -1, 1, 1);
    }

    void expect_file(const std::string& shell_command) const { expect(shell_command, "0000:02:00.0"); }
    void expect_database(const std::string& shell_command) const { expect(shell_command, "0000:01:01.0"); }

    void expect_refused(const std::string& shell_command, const std::string& message) const {
        const command_result result = run(shell_command);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_EQ(result.err, "zebdb-cds: " + message + "\n");
    }

    const std::string memory_module = module("A1", "S1");

private:
    void expect(const std::string& shell_command, const std::string& address) const {
        const command_result result = run(shell_command);
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.out, testing::EndsWith("   `- " + address + " function\n"));
        EXPECT_THAT(result.err, IsEmpty());
    }
};

TEST_F(TreeSources, MayBeACdsFile) {
    expect_file("zebdb-cds tree x.xml");
    expect_file("zebdb-cds tree - <x.xml");
    expect_file("cat x.xml | zebdb-cds tree -");
}

TEST_F(TreeSources, MayBeADatabase) {
    expect_database("cp inventory.db other.db && zebdb-cds tree other.db");
    expect_database("zebdb-cds tree - <inventory.db");
}

TEST_F(TreeSources, AreNamedWithTheirAgeWhereTheyWereLoaded) {
    ASSERT_EQ(run("zebdb-cds load x.xml").status, 0);
    EXPECT_THAT(run("zebdb-cds tree").out, ContainsRegex("\nLoaded .* UTC, from 'x\\.xml'\n$"));
    EXPECT_EQ(run("zebdb-cds tree x.xml").out.find("Loaded"), std::string::npos);
}

TEST_F(TreeSources, AreTheInventoryWhereNoneIsNamed) {
    expect_database("zebdb-cds tree");
    std::filesystem::rename(folder() / "inventory.db", folder() / "other.db");
    expect_database("zebdb-cds tree --database other.db");
    expect_database("ZEBDB_DATABASE=other.db zebdb-cds tree");
}

TEST_F(TreeSources, AreTheFileWhateverTheEnvironmentNames) {
    expect_file("ZEBDB_DATABASE=inventory.db zebdb-cds tree x.xml");
}

TEST_F(TreeSources, AreNotBothAFileAndADatabase) {
    const std::string message = "FILE and --database exclude each other; see 'zebdb-cds tree --help'";
    expect_refused("zebdb-cds tree x.xml --database inventory.db", message);
    expect_refused("zebdb-cds tree --database=inventory.db -- x.xml", message);
}

TEST_F(TreeSources, AreReadAndNothingElse) {
    const std::string database = read("inventory.db");
    EXPECT_EQ(left_in_tmp("zebdb-cds tree; zebdb-cds tree x.xml"), "");
    EXPECT_TRUE(read("inventory.db") == database);
    EXPECT_THAT(names(), ElementsAre("inventory.db", "x.xml"));
}

TEST_F(TreeSources, MayBeInAFolderThatMayNotBeWritten) {
    std::filesystem::permissions(folder(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    const command_result of_file = run_unprivileged("zebdb-cds tree x.xml");
    const command_result of_database = run_unprivileged("zebdb-cds tree");
    std::filesystem::permissions(folder(), std::filesystem::perms::owner_all);
    EXPECT_EQ(of_file.status, 0);
    EXPECT_EQ(of_database.status, 0);
}

TEST_F(TreeSources, AreRefusedWhenMissing) {
    expect_refused("zebdb-cds tree none.xml", "cannot read 'none.xml': No such file or directory");
    expect_refused("zebdb-cds tree ''", "cannot read '': No such file or directory");
    expect_refused("zebdb-cds tree --database none.db",
                   "cannot read database 'none.db': No such file or directory; make it with 'zebdb-cds load' or name "
                   "another with --database");
    EXPECT_THAT(names(), ElementsAre("inventory.db", "x.xml"));
}

TEST_F(TreeSources, AreRefusedWhenTheyAreNeitherFilesNorDatabases) {
    write("text", "hello\n");
    expect_refused("zebdb-cds tree text", "cannot read 'text': line 1, column 1: Start tag expected, '<' not found");
    expect_refused("zebdb-cds tree - <text",
                   "cannot read standard input: line 1, column 1: Start tag expected, '<' not found");
    expect_refused("zebdb-cds tree --database text",
                   "cannot read 'text': file is not a database; name another file with --database");
}

TEST_F(TreeSources, AreRefusedWhenTheyAreOtherDatabases) {
    execute("other.db", "CREATE TABLE t (x)");
    expect_refused("zebdb-cds tree other.db",
                   "cannot read 'other.db': no such table: PCIBridge; it holds no inventory");
    expect_refused("zebdb-cds tree --database other.db",
                   "cannot read 'other.db': no such table: PCIBridge; it holds no inventory, name another with "
                   "--database");
}

TEST_F(TreeSources, AreRefusedWhenTheyAreDamagedDatabases) {
    write("cut.db", read("inventory.db").substr(0, 5000));
    expect_refused("zebdb-cds tree cut.db", "cannot read 'cut.db': database disk image is malformed");
    expect_refused("zebdb-cds tree - <cut.db", "cannot read standard input: database disk image is malformed");
}

TEST_F(TreeSources, AreReportedWhenTheTreeCannotBeWritten) {
    expect_refused("zebdb-cds tree >/dev/full", "cannot write to standard output: No space left on device");
    expect_refused("zebdb-cds tree --format json >/dev/full",
                   "cannot write to standard output: No space left on device");
}

TEST_F(TreeSources, AreReadQuietlyWhenNobodyReadsTheTree) {
    const command_result result = run("{ zebdb-cds tree; echo $? >status; } | true");
    EXPECT_EQ(read("status"), "0\n");
    EXPECT_THAT(result.err, IsEmpty());
}

// All that a real server's file describes, each row once, and its whole tree as the sample's documentation tells it.
TEST_F(TreeSources, MayBeTheSampleOfATwoSocketServer) {
    const std::string shown = tree(quoted(SAMPLES_DIR "/two-socket-server.xml"));
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'), 1 + 2 + 18 + 20);
    EXPECT_THAT(shown, StartsWith("Node 1\n+- Segment 0000\n"));
    EXPECT_THAT(shown, testing::HasSubstr("|  +- 0000:00:1c.0 bridge [01-02]: [8086:a190]\n"
                                          "|  |  `- 0000:01:00.0 bridge [02-02]: [1a03:1150]\n"
                                          "|  |     `- 0000:02:00.0 display (VGA), slot 0, Embedded: [1a03:2000]\n"));
}
