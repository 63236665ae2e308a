// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>

#include "support/cds_text.h"
#include "support/comma_locale.h"
#include "tools/subcommands/command_test.h"

using cds_parser::setting_node;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

namespace {

// One row of each kind but bridges, of which there are two.
const std::string full_server = cds_file(
    cds_component("cpu_info", {text("Socket Designation", "CPU 1")}) +
    cds_component("memory_info", {text("Device Locator", "DIMM 1")}) +
    cds_component(
        "pci_bridge_info", {integer("Bus Number", "0"), integer("Device Number", "1"), integer("Function Number", "0")},
        cds_component("pci_bridge_info",
                      {integer("Bus Number", "1"), integer("Device Number", "2"), integer("Function Number", "0")}) +
            cds_component("pci_device_info",
                          {integer("Bus Number", "1"), integer("Device Number", "3"), integer("Function Number", "4"),
                           integer("Location", "1"), integer("Slot Number", "5")})));

const std::string nothing = cds_file("");

// A processor, and a function of which nobody knows where it is.
const std::string server_with_a_gap =
    cds_file(cds_component("cpu_info", {text("Socket Designation", "CPU 1")}) +
             cds_component("pci_device_info", {integer("Bus Number", "1"), integer("Device Number", "3"),
                                               integer("Function Number", "4")}));

}  // namespace

class Load : public command_test {
protected:
    Load() { write("server.xml", full_server); }

    std::string processors_in(const std::string& database) const {
        return query(database, "SELECT count(*) FROM Processor");
    }
};

TEST_F(Load, TellsHowLongItTookInTheUnitThatFits) {
    const std::string seconds = "[1-9][0-9]*\\.[0-9][0-9] s:\n";
    EXPECT_THAT(run("zebdb-cds load server.xml").out,  // on a busy machine it may take long
                ContainsRegex("^Loaded 'server.xml' into 'inventory.db' in ([0-9]{1,3} ms:\n|" + seconds + ")"));
    const command_result slow = run(R"(
        mkfifo slow.xml
        zebdb-cds load slow.xml &
        exec 9>slow.xml  # goes on when the command has opened it
        sleep 1.01
        cat server.xml >&9
        exec 9>&-
        wait)");
    EXPECT_THAT(slow.out, ContainsRegex("^Loaded 'slow.xml' into 'inventory.db' in " + seconds));
}

TEST_F(Load, FillsTheTablesAndPrintsHowManyRowsEachHas) {
    const command_result result = run("zebdb-cds load server.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, MatchesRegex("Loaded 'server.xml' into 'inventory.db' in [0-9.]+ m?s:\n"
                                         "  processors       1\n"
                                         "  memory           1\n"
                                         "  bridges          2\n"
                                         "  devices          1\n"));
    EXPECT_EQ(query("inventory.db", "SELECT Socket FROM Processor"), "CPU 1");
    EXPECT_EQ(query("inventory.db", "SELECT DevLocator FROM Memory"), "DIMM 1");
    EXPECT_EQ(query("inventory.db", "SELECT group_concat(BusNo || '.' || DevNo) FROM PCIBridge"), "0.1,1.2");
    EXPECT_EQ(query("inventory.db", "SELECT FunKey FROM PCIs"), std::to_string(0x00010304));
}

TEST_F(Load, LoadsTheSampleServer) {
    std::filesystem::copy_file(SAMPLES_DIR "/two-socket-server.xml", folder() / "sample.xml");
    const command_result result = run("zebdb-cds load sample.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, EndsWith("  processors       2\n"
                                     "  memory          24\n"
                                     "  bridges         18\n"
                                     "  devices         20\n"
                                     "13 components left no row: 5 have no location, 2 no address, "
                                     "6 belong to a card that is recorded once; "
                                     "zebdb-cds explain sample.xml tells which\n"));
}

TEST_F(Load, ReadsDecimalsAlikeWhateverLocaleItsEnvironmentNames) {
    const comma_locale numbers;
    write("speed.xml",
          cds_file(cds_component("memory_info", {{"Maximum Speed", "1,5e3", setting_node::decimal_value}})));
    EXPECT_EQ(run("LC_ALL=xx_XX zebdb-cds load speed.xml").status, 0);
    EXPECT_EQ(query("inventory.db", "SELECT MaxSpeed FROM Memory"), "1");
}

TEST_F(Load, NotesWhatItLoaded) {
    ASSERT_EQ(run("zebdb-cds load server.xml").status, 0);
    EXPECT_EQ(query("inventory.db", "SELECT Name FROM Source"), "server.xml");
    EXPECT_EQ(query("inventory.db", "SELECT Bytes FROM Source"), std::to_string(full_server.size()));
    EXPECT_EQ(query("inventory.db", "SELECT Sha256 FROM Source") + "  server.xml\n", run("sha256sum server.xml").out);
    EXPECT_EQ(query("inventory.db", "SELECT abs(LoadedAt - unixepoch()) < 100 FROM Source"), "1");
}

TEST_F(Load, NotesThePackedFileWhereOneWasNamed) {
    ASSERT_EQ(run("gzip server.xml && zebdb-cds load server.xml.gz").status, 0);
    EXPECT_EQ(query("inventory.db", "SELECT Sha256 FROM Source") + "  server.xml.gz\n",
              run("sha256sum server.xml.gz").out);
}

TEST_F(Load, NotesTheLastSourceOnly) {
    ASSERT_EQ(run("zebdb-cds load server.xml && cat server.xml | zebdb-cds load -").status, 0);
    EXPECT_EQ(query("inventory.db", "SELECT group_concat(Name) FROM Source"), "-");
}

TEST_F(Load, ReplacesWhatTheDatabaseHeld) {
    ASSERT_EQ(run("zebdb-cds load server.xml").status, 0);
    write("nothing.xml", nothing);
    const command_result result = run("zebdb-cds load nothing.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("  processors       0\n"));
    EXPECT_EQ(processors_in("inventory.db"), "0");
}

TEST_F(Load, PassesTheLogOnWithItsLevels) {
    EXPECT_EQ(run("zebdb-cds load server.xml").err,
              "INFO: CDS PARSER: find a PCI device, slot=5, bus=1, funNo=4\n"
              "INFO: successfully parsed \"server.xml\"\n");
}

TEST_F(Load, SaysHowManyComponentsLeftNoRowAndWhy) {
    write("my server.xml", server_with_a_gap);
    const command_result result = run("zebdb-cds load 'my server.xml'");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, EndsWith("  devices          0\n"
                                     "1 component left no row: 1 has no location; "
                                     "zebdb-cds explain 'my server.xml' tells which\n"));
}

TEST_F(Load, ThatIsStrictChangesNothingWhenAComponentLeftNoRow) {
    ASSERT_EQ(run("zebdb-cds load server.xml").status, 0);
    write("incomplete.xml", server_with_a_gap);
    const command_result result = run("zebdb-cds load --strict incomplete.xml");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: cannot load 'incomplete.xml': 1 component left no row: 1 has no location; "
              "zebdb-cds explain incomplete.xml tells which; 'inventory.db' is unchanged");
    EXPECT_EQ(query("inventory.db", "SELECT count(*) FROM PCIs"), "1");
}

TEST_F(Load, ThatIsStrictMakesNoDatabaseOfAnIncompleteFile) {
    write("incomplete.xml", server_with_a_gap);
    EXPECT_EQ(run("zebdb-cds load --strict incomplete.xml").status, 2);
    EXPECT_THAT(names(), ElementsAre("incomplete.xml", "server.xml"));
}

TEST_F(Load, ThatIsStrictTakesAFileOfWhichEverythingLeftItsRow) {
    EXPECT_EQ(run("zebdb-cds load --strict server.xml").status, 0);
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

TEST_F(Load, ThatIsQuietShowsErrorsOnly) {
    write("incomplete.xml", server_with_a_gap);
    EXPECT_EQ(run("zebdb-cds load -q incomplete.xml").err, "");
    EXPECT_THAT(run("zebdb-cds load --quiet missing.xml").err, HasSubstr("missing.xml"));
    EXPECT_THAT(run("zebdb-cds load incomplete.xml").err, HasSubstr("WARNING: "));
}

TEST_F(Load, IsNotQuietAndVerboseAtOnce) {
    const command_result result = run("zebdb-cds load -q -v server.xml");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("--verbose"));
}

TEST_F(Load, TakesTheDatabaseFromTheEnvironment) {
    ASSERT_EQ(run("ZEBDB_DATABASE=other.db zebdb-cds load server.xml").status, 0);
    EXPECT_THAT(names(), ElementsAre("other.db", "server.xml"));
}

TEST_F(Load, TakesTheDatabaseOfItsOptionBeforeThatOfTheEnvironment) {
    ASSERT_EQ(run("ZEBDB_DATABASE=other.db zebdb-cds load --database mine.db server.xml").status, 0);
    EXPECT_THAT(names(), ElementsAre("mine.db", "server.xml"));
}

TEST_F(Load, TakesAnEmptyEnvironmentVariableForNone) {
    ASSERT_EQ(run("ZEBDB_DATABASE= zebdb-cds load server.xml").status, 0);
    EXPECT_THAT(names(), ElementsAre("inventory.db", "server.xml"));
}

TEST_F(Load, TakesDatabaseNamesThatSqliteWouldNotTakeForFiles) {
    EXPECT_EQ(run("zebdb-cds load server.xml --database :memory:").status, 0);
    EXPECT_EQ(run("zebdb-cds load server.xml --database 'file:x.db?mode=memory'").status, 0);
    EXPECT_THAT(names(), ElementsAre(":memory:", "file:x.db?mode=memory", "server.xml"));
}

TEST_F(Load, TakesAFileNamedLikeASubcommand) {
    write("show", full_server);
    EXPECT_EQ(run("zebdb-cds load show").status, 0);
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

TEST_F(Load, TakesAFileWhoseNameBeginsWithADash) {
    write("-x", full_server);
    EXPECT_EQ(run("zebdb-cds load -- -x").status, 0);
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

TEST_F(Load, ReadsStandardInputFromAPipe) {
    const command_result result = run("cat server.xml | zebdb-cds load -");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("Loaded standard input into 'inventory.db'"));
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

TEST_F(Load, ReadsAFileOnStandardInputFromWhereItStands) {
    write("headed.txt", "one line before the file\n" + full_server);
    EXPECT_EQ(run("{ read -r line; zebdb-cds load -; } <headed.txt").status, 0);
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

TEST_F(Load, ReadsStandardInputFromASocket) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    ASSERT_EQ(::write(ends[0], full_server.data(), full_server.size()), static_cast<ssize_t>(full_server.size()));
    ASSERT_EQ(shutdown(ends[0], SHUT_WR), 0);
    EXPECT_EQ(run("zebdb-cds load -", ends[1]).status, 0);
    close(ends[0]);
    close(ends[1]);
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

TEST_F(Load, ReadsWhatGzipPacked) {
    ASSERT_EQ(run("gzip server.xml").status, 0);
    EXPECT_EQ(run("zebdb-cds load server.xml.gz").status, 0);
    EXPECT_EQ(processors_in("inventory.db"), "1");
    EXPECT_EQ(run("cat server.xml.gz | zebdb-cds load - --database other.db").status, 0);
    EXPECT_EQ(processors_in("other.db"), "1");
}

TEST_F(Load, NamesADatabaseInThePlaceOfACdsFile) {
    ASSERT_EQ(run("zebdb-cds load server.xml").status, 0);
    const command_result result = run("zebdb-cds load inventory.db --database new.db");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: cannot load 'inventory.db': it is a database and no CDS file; 'zebdb-cds show', 'tree' and "
              "'diff' take one; 'new.db' was not made");
}

TEST_F(Load, ReadsANamedPipe) {
    EXPECT_EQ(run("mkfifo pipe; cat server.xml >pipe & zebdb-cds load pipe").status, 0);
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

TEST_F(Load, GoesOnWhenNobodyReadsItsOutput) {
    const command_result result = run("{ zebdb-cds load server.xml; echo $? >status; } 2>err | true; cat err >&2");
    EXPECT_EQ(read("status"), "0\n");
    EXPECT_THAT(result.err, Not(HasSubstr("zebdb-cds:")));
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

TEST_F(Load, SaysThatTheRowsAreThereWhenItsOutputCannotBeWritten) {
    const command_result result = run("zebdb-cds load server.xml >/dev/full");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: cannot write to standard output: No space left on device; "
              "the rows of 'server.xml' are in 'inventory.db' all the same");
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

TEST_F(Load, WritesNothingIntoItsFilesWhenItsStandardDescriptorsAreClosed) {
    EXPECT_EQ(run("zebdb-cds load server.xml <&- >&- 2>&-").status, 2);
    EXPECT_EQ(read("server.xml"), full_server);
    EXPECT_EQ(query("inventory.db", "PRAGMA integrity_check"), "ok");
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

// Begins to load and is terminated once it has the database for itself and has deleted the memory rows.
constexpr const char* interrupted_load =
    "mkfifo pipe; zebdb-cds load pipe & exec 3>pipe; printf '<component>' >&3;"
    "until [ -e /tmp/.dmdb_memory_deleted_flag ]; do sleep 0.01; done;"
    "kill -TERM $!; wait $!";

TEST_F(Load, LeavesNoNewDatabaseWhenItIsTerminated) {
    const command_result result = run(interrupted_load);
    EXPECT_EQ(result.status, 128 + SIGTERM);
    EXPECT_THAT(names(), ElementsAre("pipe", "server.xml"));
}

TEST_F(Load, LeavesTheRowsOfADatabaseWhenItIsTerminated) {
    ASSERT_EQ(run("zebdb-cds load server.xml").status, 0);
    const command_result result = run(interrupted_load);
    EXPECT_EQ(result.status, 128 + SIGTERM);
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

namespace {

// Runs `loading` beside another process that has the write lock, which does `meanwhile` once the load has the database
// open, and lets go of the lock a moment later.
std::string beside_a_writer(const std::string& loading, const std::string& meanwhile) {
    return "mkfifo sql; sqlite3 inventory.db <sql & exec 4>sql;"
           "printf 'BEGIN IMMEDIATE;\n.shell touch locked\n' >&4; until [ -e locked ]; do sleep 0.01; done;" +
           loading + " & load=$!;" +
           "until ls -l /proc/$load/fd 2>&1 | grep -q inventory.db; do sleep 0.01; done; sleep 0.2;" + meanwhile +
           "; kill -0 $load || exit 9; printf 'COMMIT;\n.quit\n' >&4; wait $load";
}

constexpr const char* fill_by_writer =
    "printf 'CREATE TABLE Processor (Id INTEGER PRIMARY KEY); INSERT INTO Processor VALUES (1), (2);\n' >&4";

}  // namespace

TEST_F(Load, WaitsForAnotherProcessThatHasTheWriteLock) {
    ASSERT_EQ(run("zebdb-cds load server.xml").status, 0);
    write("nothing.xml", nothing);
    const command_result result = run(beside_a_writer("zebdb-cds load nothing.xml", "true"));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(processors_in("inventory.db"), "0");
}

// What a pipe held is gone by then.
TEST_F(Load, LeavesWhatAnotherProcessPutsIntoANewDatabaseMeanwhileToALoadOfAPipe) {
    const command_result result =
        run("mkfifo pipe; cat server.xml >pipe & " + beside_a_writer("zebdb-cds load pipe", fill_by_writer));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: cannot load 'pipe': another program has made the database meanwhile; try again; "
              "'inventory.db' is unchanged");
    EXPECT_EQ(processors_in("inventory.db"), "2");
}

TEST_F(Load, ReplacesWhatAnotherProcessPutsIntoANewDatabaseMeanwhile) {
    const command_result result = run(beside_a_writer("zebdb-cds load server.xml",
                                                      "zebdb-cds load nothing.xml --database other.db;"
                                                      "printf '.output /dev/null\n.read other.sql\n' >&4"));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(processors_in("inventory.db"), "1");
}

TEST_F(Load, OfAGoodFileSucceedsBesideARefusedOne) {
    write("refused.xml", full_server.substr(0, full_server.size() - 2));
    const command_result result = run(
        "for round in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20; do"
        "  zebdb-cds load refused.xml 2>>refusals & zebdb-cds load server.xml || exit; wait $!; [ $? -eq 2 ] || exit 3;"
        "  sqlite3 inventory.db 'SELECT count(*) FROM Processor' | grep -qx 1 || exit; rm inventory.db;"
        "done");
    EXPECT_EQ(result.status, 0) << result.err;
}
