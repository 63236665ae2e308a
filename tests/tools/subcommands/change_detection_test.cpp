// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <cstdint>

#include "support/cds_text.h"
#include "tools/subcommands/command_test.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

namespace {

std::string function(int bus) {
    return cds_component("pci_device_info", {integer("Bus Number", std::to_string(bus)), integer("Device Number", "0"),
                                             integer("Function Number", "0"), integer("Location", "1"),
                                             integer("Slot Number", std::to_string(bus))});
}

const std::string three_functions = cds_file(function(1) + function(2) + function(3));
const std::string file_with_a_gap =
    cds_file(function(1) + cds_component("pci_device_info", {integer("Bus Number", "9")}));

}  // namespace

class ChangeDetection : public command_test {
protected:
    ChangeDetection() {
        write("server.xml", three_functions);
        write("other.bin", "other");
    }

    command_result zebdb_cds(const std::string& arguments) const { return run("zebdb-cds " + arguments + " --root r"); }

    // Leaves everything that a check needs.
    void refresh_and_save() const {
        ASSERT_EQ(zebdb_cds("refresh server.xml").status, 0);
        ASSERT_EQ(zebdb_cds("save-digest server.xml other.bin").status, 0);
    }

    // Runs a copy of the program in a folder of its own, without the script unless `prepare` makes one.
    command_result run_copy(const std::string& prepare) const {
        return run(R"sh(
            mkdir -p bin libexec/zebdb-cds
            program=$(command -v zebdb-cds)
            cp "$program" bin
            export LD_LIBRARY_PATH=$(dirname "$program")/..:$(dirname "$program")/../platform:$LD_LIBRARY_PATH
        )sh" + prepare +
                   "\nbin/zebdb-cds refresh server.xml --root r");
    }

    void expect_refused_behind_dashes(const std::string& files, const std::string& refused) const {
        const command_result result = run("zebdb-cds save-digest --root r -- " + files);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.last_error_line(),
                  "zebdb-cds: refused path '" + refused + "': sha384sum would not take it for a file; put ./ in front");
    }

    void expect_refused(const std::string& arguments, const std::string& message) const {
        const command_result result = zebdb_cds(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.last_error_line(), "zebdb-cds: " + message);
    }
};

TEST_F(ChangeDetection, CheckNamesTheSecondFileWhenThatChanged) {
    refresh_and_save();
    write("other.bin", "changed");
    const command_result result = zebdb_cds("check server.xml other.bin");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "changed\n  'other.bin' differs from its saved digest\n");
}

TEST_F(ChangeDetection, CheckHasNoAnswerWhenATableCannotBeRead) {
    refresh_and_save();
    execute("inventory.db", "DROP TABLE PCIs");
    expect_refused("check server.xml other.bin",
                   "cannot tell whether the inventory changed: query PCIs: no such table: PCIs");
}

TEST_F(ChangeDetection, CheckNamesTheKeyThatHasVanished) {
    refresh_and_save();
    execute("inventory.db", "DELETE FROM PCIs WHERE BusNo = 2");
    const command_result result = zebdb_cds("check server.xml other.bin");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "changed\n  function key 0x00020000 (0000:02:00.0) of /var/DS/pci_inventory.fkey has vanished from "
              "PCIs\n");
}

TEST_F(ChangeDetection, CheckDoesNotSeeThatTheLastKeyHasVanished) {
    refresh_and_save();
    execute("inventory.db", "DELETE FROM PCIs WHERE BusNo = 3");
    EXPECT_EQ(zebdb_cds("check server.xml other.bin").out, "unchanged\n");
}

TEST_F(ChangeDetection, CheckCountsThePendingFirmware) {
    refresh_and_save();
    execute("inventory.db", "INSERT INTO PendingFirmware (Component, Version) VALUES ('NIC', '1.2'), ('BIOS', '3')");
    const command_result result = zebdb_cds("check server.xml other.bin");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "changed\n  firmware is pending: 2 updates\n");
}

TEST_F(ChangeDetection, CheckSaysOfOnePendingUpdateThatItIsOne) {
    refresh_and_save();
    execute("inventory.db", "INSERT INTO PendingFirmware (Component, Version) VALUES ('NIC', '1.2')");
    EXPECT_EQ(zebdb_cds("check server.xml other.bin").out, "changed\n  firmware is pending: 1 update\n");
}

TEST_F(ChangeDetection, CheckNamesEveryReasonOfTheInventoryInALineOfItsOwn) {
    refresh_and_save();
    execute("inventory.db",
            "INSERT INTO PendingFirmware (Component, Version) VALUES ('NIC', '1.2');"
            "DELETE FROM PCIs WHERE BusNo = 2; UPDATE PCIAdapter SET PCIFuncKey = 0 WHERE PCIFuncKey = 0x10000");
    EXPECT_EQ(zebdb_cds("check server.xml other.bin").out,
              "changed\n"
              "  firmware is pending: 1 update\n"
              "  function key 0x00020000 (0000:02:00.0) of /var/DS/pci_inventory.fkey has vanished from PCIs\n"
              "  function key 0x00010000 (0000:01:00.0) of /var/DS/inventory.fkey has vanished from PCIAdapter\n");
}

TEST_F(ChangeDetection, CheckWritesEveryByteOfAKeyAsAPartOfAnAddress) {
    refresh_and_save();
    const std::uint32_t saved[] = {2, 0xA1B3C5D7, 0};
    write("r/var/DS/pci_inventory.fkey", {reinterpret_cast<const char*>(saved), sizeof saved});
    EXPECT_EQ(zebdb_cds("check server.xml other.bin").out,
              "changed\n  function key 0xa1b3c5d7 (00a1:b3:c5.d7) of /var/DS/pci_inventory.fkey has vanished from "
              "PCIs\n");
}

TEST_F(ChangeDetection, CheckLogsOnceThatAFileDiffers) {
    refresh_and_save();
    write("other.bin", "changed");
    const std::string log = zebdb_cds("check server.xml other.bin").err;
    const std::string difference = "other.bin digest [";
    EXPECT_NE(log.find(difference), std::string::npos);
    EXPECT_EQ(log.find(difference), log.rfind(difference));
}

TEST_F(ChangeDetection, CheckCannotTellWithoutASavedDigestOfEither) {
    for (const std::string file : {"server.xml", "other.bin"}) {
        refresh_and_save();
        std::filesystem::remove(folder() / (file + ".digest"));
        expect_refused("check server.xml other.bin",
                       "cannot tell whether the inventory changed: a file has no saved digest; save it with "
                       "'zebdb-cds save-digest'");
    }
}

TEST_F(ChangeDetection, CheckCannotTellWithoutTheAdapterKeys) {
    refresh_and_save();
    std::filesystem::remove(folder() / "r/var/DS/inventory.fkey");
    expect_refused("check server.xml other.bin",
                   "cannot tell whether the inventory changed: /var/DS/inventory.fkey (with --root that is '" +
                       (folder() / "r/var/DS/inventory.fkey").string() +
                       "') cannot be read; write it with 'zebdb-cds refresh'");
}

TEST_F(ChangeDetection, CheckWithoutADatabaseMakesNone) {
    expect_refused("check server.xml other.bin",
                   "cannot read database 'inventory.db': No such file or directory; make it with 'zebdb-cds load' or "
                   "name another with --database");
    EXPECT_FALSE(std::filesystem::exists(folder() / "inventory.db"));
}

TEST_F(ChangeDetection, RefusesAPathWithABlank) {
    write("my server.xml", three_functions);
    expect_refused("check 'my server.xml' other.bin",
                   "refused path 'my server.xml': it goes to a shell as it is and holds a blank; rename the file or "
                   "name it by another path");
}

TEST_F(ChangeDetection, RefusesAPathThatLooksLikeAnOption) {
    const command_result result = run("zebdb-cds save-digest --root r -- server.xml -x");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: refused path '-x': sha384sum would not take it for a file; put ./ in front");
}

TEST_F(ChangeDetection, TakesThePathsThatAreNotCutAndRefusesLongerOnes) {
    const std::string longest_to_save(43, 's');
    const std::string longest_to_check(96, 'c');
    ASSERT_EQ(zebdb_cds("refresh server.xml").status, 0);
    for (const std::string& name : {longest_to_save, longest_to_save + "s", longest_to_check, longest_to_check + "c"}) {
        write(name, "content");
    }

    ASSERT_EQ(zebdb_cds("save-digest server.xml " + longest_to_save).status, 0);
    EXPECT_TRUE(std::filesystem::exists(folder() / (longest_to_save + ".digest")));
    expect_refused("save-digest server.xml " + longest_to_save + "s",
                   "refused path '" + longest_to_save +
                       "s': it is 44 bytes long, and beyond 43 the library cuts the command that it stands in; name "
                       "the file by a shorter path");

    std::filesystem::copy_file(folder() / (longest_to_save + ".digest"), folder() / (longest_to_check + ".digest"));
    EXPECT_EQ(zebdb_cds("check server.xml " + longest_to_check).out, "unchanged\n");
    expect_refused("check server.xml " + longest_to_check + "c",
                   "refused path '" + longest_to_check +
                       "c': it is 97 bytes long, and beyond 96 the library cuts the command that it stands in; name "
                       "the file by a shorter path");
}

TEST_F(ChangeDetection, SaveDigestOfALongPathOffersToGoToItsFolder) {
    const std::string folder_name(50, 'f');
    std::filesystem::create_directory(folder() / folder_name);
    write(folder_name + "/other.bin", "other");
    ASSERT_EQ(zebdb_cds("refresh server.xml").status, 0);
    expect_refused("save-digest server.xml " + folder_name + "/other.bin",
                   "refused path '" + folder_name +
                       "/other.bin': it is 60 bytes long, and beyond 43 the library cuts the command that it stands "
                       "in; go to its folder with 'cd " +
                       folder_name + "' and name it 'other.bin'");
}

TEST_F(ChangeDetection, SaveDigestNamesWhatItHasSaved) {
    const command_result result = zebdb_cds("save-digest server.xml other.bin");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "Saved 'server.xml.digest' and 'other.bin.digest'\n");
}

TEST_F(ChangeDetection, SaveDigestThatCannotWriteSaysWhatToDo) {
    std::filesystem::create_directory(folder() / "server.xml.digest");
    const command_result result = zebdb_cds("save-digest server.xml other.bin");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.last_error_line(), StartsWith("zebdb-cds: cannot save the digests: "));
    EXPECT_THAT(result.last_error_line(), EndsWith("; make their folders writable"));
}

TEST_F(ChangeDetection, SaveDigestNamesTheFileThatIsMissing) {
    expect_refused("save-digest server.xml missing.bin", "cannot read 'missing.bin': No such file or directory");
}

TEST_F(ChangeDetection, RefreshOfARefusedFileLeavesTheDatabaseAsItWas) {
    ASSERT_EQ(zebdb_cds("refresh server.xml").status, 0);
    const std::string before = read("inventory.db");
    write("broken.xml", "<component><name>x</name></component>");
    expect_refused("refresh broken.xml",
                   "cannot refresh 'inventory.db' from 'broken.xml': line 1: Unexpected node 'name' in component");
    EXPECT_EQ(read("inventory.db"), before);
}

TEST_F(ChangeDetection, RefreshOfARefusedFileMakesNoDatabase) {
    write("broken.xml", "<component>");
    EXPECT_EQ(zebdb_cds("refresh broken.xml").status, 2);
    EXPECT_FALSE(std::filesystem::exists(folder() / "inventory.db"));
}

TEST_F(ChangeDetection, RefreshThatCannotNoteWhatTheRowsAreFromLeavesTheDatabaseAsItWas) {
    ASSERT_EQ(zebdb_cds("refresh server.xml").status, 0);
    execute("inventory.db",
            "CREATE TRIGGER refuse BEFORE INSERT ON Source BEGIN SELECT RAISE(ABORT, 'no room for notes'); END");
    const std::string before = run("sqlite3 inventory.db .dump").out;
    write("server.xml", cds_file(function(4)));
    expect_refused("refresh server.xml",
                   "cannot refresh 'inventory.db' from 'server.xml': insert into Source: no room for notes");
    EXPECT_EQ(run("sqlite3 inventory.db .dump").out, before);
}

TEST_F(ChangeDetection, RefreshTellsWhatLeftNoRow) {
    write("incomplete.xml", file_with_a_gap);
    const command_result result = zebdb_cds("refresh incomplete.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, EndsWith("\n1 component left no row: 1 has no address; "
                                     "zebdb-cds explain incomplete.xml tells which\n"));
}

TEST_F(ChangeDetection, RefreshThatIsStrictLeavesTheDatabaseAsItWas) {
    ASSERT_EQ(zebdb_cds("refresh server.xml").status, 0);
    write("incomplete.xml", file_with_a_gap);
    expect_refused("refresh --strict incomplete.xml",
                   "cannot refresh 'inventory.db' from 'incomplete.xml': 1 component left no row: 1 has no address; "
                   "zebdb-cds explain incomplete.xml tells which");
    EXPECT_EQ(query("inventory.db", "SELECT count(*) FROM PCIs"), "3");
}

TEST_F(ChangeDetection, RefreshReadsStandardInput) {
    const command_result result = run("zebdb-cds refresh - --root r < server.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(query("inventory.db", "SELECT count(*) FROM PCIs"), "3");
}

TEST_F(ChangeDetection, BmcAddressIsNoAnswerWithoutTheControllersBridge) {
    ASSERT_EQ(zebdb_cds("refresh server.xml").status, 0);
    const command_result result = zebdb_cds("bmc-address");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: 'inventory.db' holds no bridge 1a03:1150, which is the controller's own");
}

TEST_F(ChangeDetection, BmcAddressFailsWhenTheBridgesCannotBeRead) {
    ASSERT_EQ(zebdb_cds("refresh server.xml").status, 0);
    execute("inventory.db", "DROP TABLE PCIBridge");
    expect_refused("bmc-address", "query PCIBridge: no such table: PCIBridge");
}

TEST_F(ChangeDetection, BmcAddressFailsWhenTheRecordCannotBeWritten) {
    ASSERT_EQ(zebdb_cds("refresh server.xml").status, 0);
    execute("inventory.db",
            "INSERT INTO PCIBridge (VendorId, DevId, BusNo, DevNo, FunNo) VALUES (6659, 4432, 5, 6, 7)");
    std::filesystem::create_directory(folder() / "r/var/log/bmc_bdf.bin");
    const command_result result = zebdb_cds("bmc-address");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.last_error_line(), "zebdb-cds: cannot write /var/log/bmc_bdf.bin (with --root that is '" +
                                            (folder() / "r/var/log/bmc_bdf.bin").string() +
                                            "'); see that its folder is there and writable");

    std::filesystem::remove(folder() / "r/var/log/bmc_bdf.bin");
    EXPECT_EQ(zebdb_cds("bmc-address").out, "05:06.7\n");
    EXPECT_EQ(zebdb_cds("bmc-address").out, "05:06.7\n");
}

TEST_F(ChangeDetection, RootHidesNeitherTheProgramNorTheWorkingFolderNorTheFilesThatAreNamed) {
    const command_result result = run(R"sh(
        mkdir -p /tmp/app/bin /tmp/app/libexec /tmp/here
        program=$(command -v zebdb-cds)
        cp "$program" /tmp/app/bin
        cp -RL "$(dirname "$program")"/../libexec/zebdb-cds /tmp/app/libexec
        export LD_LIBRARY_PATH=$(dirname "$program")/..:$(dirname "$program")/../platform:$LD_LIBRARY_PATH
        cp server.xml /tmp/named.xml
        cp other.bin /tmp/here
        cd /tmp/here
        /tmp/app/bin/zebdb-cds refresh /tmp/named.xml --database /tmp/named.db --root root || exit
        /tmp/app/bin/zebdb-cds save-digest /tmp/named.xml other.bin --root root || exit
        ls -A /tmp/named* /tmp/here
    )sh");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, EndsWith("'other.bin.digest'\n/tmp/named.db\n/tmp/named.xml\n/tmp/named.xml.digest\n\n"
                                     "/tmp/here:\nother.bin\nother.bin.digest\nroot\n"));
}

TEST_F(ChangeDetection, RootKeepsTheFolderVisibleThatReplacesNothingButIsThePlaceItself) {
    const command_result result =
        run("cp server.xml /tmp; cd /tmp && zebdb-cds refresh server.xml --root root && ls -d inv* root *.xml && find "
            "root -name '.dmdb*'");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, EndsWith("inventory.db\nroot\nserver.xml\nroot/tmp/.dmdb_memory_deleted_flag\n"));
}

TEST_F(ChangeDetection, RootMayStandBehindAnEqualsSign) {
    const command_result result = run("zebdb-cds refresh --root=r server.xml");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(query("inventory.db", "SELECT count(*) FROM PCIs"), "3");
    EXPECT_TRUE(std::filesystem::exists(folder() / "r/var/DS/pci_inventory.fkey"));
}

TEST_F(ChangeDetection, RootIsNoOptionBehindTwoDashes) {
    expect_refused_behind_dashes("--root server.xml", "--root");
    expect_refused_behind_dashes("server.xml --root=x", "--root=x");
}

TEST_F(ChangeDetection, RootFindsTheProgramAndItsLibrariesBelowTmp) {
    if (run_with_disk(100'000, "true").status == no_disk) {
        GTEST_SKIP() << "no /tmp can be mounted here that the dynamic loader sees, too";
    }
    const command_result result = run(R"sh(
        program=$(command -v zebdb-cds)
        build=$(dirname "$program")/..
        mkdir -p /tmp/bin /tmp/libexec /tmp/parser /tmp/platform
        cp "$program" /tmp/bin
        cp -RL "$build/libexec/zebdb-cds" /tmp/libexec
        cp "$build"/libzebdb_cds_parser.so* /tmp/parser
        cp "$build"/platform/libzebdb_platform.so* /tmp/platform
        LD_LIBRARY_PATH=/tmp/parser:/tmp/platform:$LD_LIBRARY_PATH /tmp/bin/zebdb-cds refresh server.xml --root root
    )sh");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(query("inventory.db", "SELECT count(*) FROM PCIs"), "3");
}

TEST_F(ChangeDetection, RootNeedsTheScriptBesideTheProgram) {
    const std::string script = (folder() / "bin/../libexec/zebdb-cds/sandbox").string();
    const std::string refusal =
        "zebdb-cds: --root needs the script '" + script + "', which is not there; install the command again\n";
    EXPECT_EQ(run_copy("").err, refusal);
    EXPECT_EQ(run_copy("touch libexec/zebdb-cds/sandbox").err, refusal);
}

TEST_F(ChangeDetection, RootFailsWhenTheScriptCannotBeRun) {
    const command_result result =
        run_copy("echo '#!/missing/shell' >libexec/zebdb-cds/sandbox && chmod +x libexec/zebdb-cds/sandbox");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zebdb-cds: cannot run '" + (folder() / "bin/../libexec/zebdb-cds/sandbox").string() +
                              "': No such file or directory\n");
}

TEST_F(ChangeDetection, RootFailsWhenTheProgramIsGone) {
    const command_result result = run(R"sh(
        cp "$(command -v zebdb-cds)" program
        exec 9<program
        rm program
        build=$(dirname "$(command -v zebdb-cds)")/..
        export LD_LIBRARY_PATH=$build:$build/platform:$LD_LIBRARY_PATH
        /proc/self/fd/9 refresh server.xml --root r
    )sh");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zebdb-cds: cannot find the program itself: No such file or directory\n");
}

TEST_F(ChangeDetection, WorksOnTheDatabaseThatTheOptionNamesWhateverTheEnvironmentSays) {
    const command_result result =
        run("ZEBDB_DATABASE=other.db zebdb-cds refresh server.xml --database named.db --root r");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(query("named.db", "SELECT count(*) FROM PCIs"), "3");
    EXPECT_FALSE(std::filesystem::exists(folder() / "other.db"));
}

TEST_F(ChangeDetection, RefreshFailsWhenTheSequencesCannotBeRead) {
    ASSERT_EQ(zebdb_cds("refresh server.xml").status, 0);
    execute("inventory.db", "DROP TABLE InventorySequence");
    expect_refused("refresh server.xml",
                   "cannot refresh 'inventory.db' from 'server.xml': query InventorySequence: no such table: "
                   "InventorySequence");
}

TEST_F(ChangeDetection, RefreshFailsWhenTheDatabaseIsANewerVersions) {
    ASSERT_EQ(zebdb_cds("refresh server.xml").status, 0);
    execute("inventory.db", "PRAGMA user_version = 9000");
    const command_result result = zebdb_cds("refresh server.xml");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.last_error_line(),
                StartsWith("zebdb-cds: cannot refresh 'inventory.db' from 'server.xml': cannot open inventory database "
                           "'inventory.db': it was made by a newer version (its schema is version 9000, "));
}

TEST_F(ChangeDetection, RootThatCannotBeMadeIsAFailure) {
    write("file", "");
    const command_result result = run("zebdb-cds refresh server.xml --root file/below");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "sandbox: cannot make the folder file/below: Not a directory\n");
}

TEST_F(ChangeDetection, WritesNothingIntoADatabaseOfAnotherProgram) {
    execute("other.db", "CREATE TABLE Fans (Id INTEGER)");
    const std::string before = read("other.db");
    const std::string problem =
        "database 'other.db' is another program's: it has tables, but no inventory; name another with --database";
    expect_refused("refresh server.xml --database other.db", "cannot refresh 'other.db' from 'server.xml': " + problem);
    expect_refused("check server.xml other.bin --database other.db", problem);
    expect_refused("bmc-address --database other.db", problem);
    EXPECT_EQ(read("other.db"), before);
}

TEST_F(ChangeDetection, MakesNoInventoryOnlyToReadIt) {
    write("empty.db", "");
    const std::string problem =
        "database 'empty.db' holds no inventory; load one with 'zebdb-cds load' or name another with --database";
    expect_refused("check server.xml other.bin --database empty.db", problem);
    expect_refused("bmc-address --database empty.db", problem);
    EXPECT_EQ(read("empty.db"), "");
}

TEST_F(ChangeDetection, ARefusedRefreshLeavesNoNewDatabaseAndAnEmptyOneEmpty) {
    write("bad.xml", "<component><component/></component>");
    write("empty.db", "");
    EXPECT_EQ(zebdb_cds("refresh bad.xml --database new.db").status, 2);
    EXPECT_EQ(zebdb_cds("refresh bad.xml --database empty.db").status, 2);
    EXPECT_THAT(names(), ElementsAre("bad.xml", "empty.db", "other.bin", "r", "server.xml"));
    EXPECT_EQ(read("empty.db"), "");
}

TEST_F(ChangeDetection, RefreshSaysWhereTheRowsAreWhenItsReportCannotBePrinted) {
    const command_result result = run("zebdb-cds refresh server.xml --root r >/dev/full");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: cannot write to standard output: No space left on device; the rows of 'server.xml' are in "
              "'inventory.db' all the same");
    EXPECT_EQ(query("inventory.db", "SELECT count(*) FROM PCIs"), "3");
}
