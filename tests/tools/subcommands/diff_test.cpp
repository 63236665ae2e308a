// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "support/cds_hardware.h"
#include "support/cds_text.h"
#include "support/quoted.h"
#include "tools/subcommands/diff_test.h"

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Diff : public diff_test {};

TEST_F(Diff, OfEqualInventoriesSaysSo) {
    const std::string inventory = processor("CPU 1") + module("A1", "S1") + bridge("1") + function("2");
    write_both(inventory, inventory);
    expect_diff(0, "No difference.\n");
}

TEST_F(Diff, CountsWhatDiffersOfEachKind) {
    write_both(module("A1", "S1"), module("A1", "S1") + module("B1", "S2"));
    const command_result result = diff("old.xml new.xml --stat");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "Kind        Difference\n"
              "Processors  no difference\n"
              "Memory      1 added\n"
              "Bridges     no difference\n"
              "Devices     no difference\n");
}

TEST_F(Diff, CountsInNoJson) {
    write_both("", "");
    const command_result result = diff("old.xml new.xml --stat --format json");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.err,
              "zebdb-cds: --stat counts for people, and --format json holds everything; see 'zebdb-cds diff --help'\n");
}

TEST_F(Diff, OfAServerWithItsDatabaseSaysSo) {
    ASSERT_EQ(run("cp " + quoted(SAMPLES_DIR "/two-socket-server.xml") + " old.xml").status, 0);
    load("old.xml", "old.db");
    const command_result result = diff("old.xml old.db");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "No difference.\n");
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(Diff, ListsEveryKindWithItsSigns) {
    write_both(server(processor("CPU 1", {text("Processor Version", "Fast 1"), integer("Core Enabled", "8")}) +
                      module("A1", "S1", {integer("Size in MB", "16384"), integer("Memory Type", "26")}) +
                      module("A2", "S2", {integer("Size in MB", "32768"), text("Part Number", "P2")}) +
                      bridge("1", {hex("Vendor ID", "8086"), hex("Device ID", "a190")}, function("2"))),
               server(processor("CPU 1", {text("Processor Version", "Fast 1"), integer("Core Enabled", "6")}) +
                      processor("CPU 2", {text("Processor Version", "Fast 1")}) +
                      module("B1", "S1", {integer("Size in MB", "16384"), integer("Memory Type", "26")}) +
                      bridge("1", {hex("Vendor ID", "1002"), hex("Device ID", "a190")}) +
                      function("3", {hex("Vendor ID", "10de"), hex("Device ID", "1db8"), hex("Class Code", "030200"),
                                     integer("Slot Number", "4"), text("Slot Designation", "Slot 4")})));
    expect_diff(1,
                "Processors: 1 added, 1 changed\n"
                "+ CPU 2, node 1: Fast 1\n"
                "~ CPU 1, node 1: Fast 1\n"
                "    CoreEnabled  8 -> 6\n"
                "\n"
                "Memory: 1 removed, 1 moved\n"
                "- A2, node 1: 32 GiB, P2, serial number S2\n"
                "> A1, node 1 -> B1, node 1: 16 GiB, DDR4, serial number S1\n"
                "\n"
                "Bridges: 1 changed\n"
                "~ 0000:01:00.0, node 1: 1002:a190\n"
                "    VendorId  0x8086 -> 0x1002\n"
                "\n"
                "Devices: 1 added, 1 removed\n"
                "+ 0000:03:00.0, node 1: 10de:1db8, class 0x030200, slot 4, Slot 4\n"
                "- 0000:02:00.0, node 1\n");
}

TEST_F(Diff, HidesWhatIdentifiesPartsWithRedact) {
    write_both(module("A1", "SECRET1", {text("Asset Tag", "SECRET2")}) + module("A2", "SECRET3"),
               module("B1", "SECRET1", {text("Asset Tag", "SECRET4")}) + module("A2", "SECRET5"));
    const command_result result = diff("old.xml new.xml --redact");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "Memory: 1 changed, 1 moved\n"
              "~ A2: serial number [redacted]\n"
              "    SerialNo  \"[redacted]\" -> \"[redacted]\"\n"
              "> A1 -> B1: serial number [redacted]\n"
              "    AssetTag  \"[redacted]\" -> \"[redacted]\"\n");
    EXPECT_THAT(diff("old.xml new.xml --redact --format json").out, Not(HasSubstr("SECRET")));
}

TEST_F(Diff, ThatCannotBeWrittenFails) {
    write_both(module("A1", "S1"), module("A2", "S2"));
    const command_result result = diff("old.xml new.xml >/dev/full");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zebdb-cds: cannot write to standard output: No space left on device\n");
}

TEST_F(Diff, EndsQuietlyWhenNobodyReads) {
    write_both(module("A1", "S1"), module("A2", "S2"));
    const command_result result = run("mkfifo p; true <p & exec 3>p; wait; zebdb-cds diff old.xml new.xml >&3");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, IsEmpty());
}

class DiffOnATerminal : public diff_test {
protected:
    DiffOnATerminal() {
        write_both(module("A1", "S1") + module("A2", "S2") + module("A3", "") + module("A4", "") + module("A4", ""),
                   module("B1", "S1") + module("B2", "S3") + module("A3", "", {integer("Data Width", "64")}) +
                       module("A4", "") + module("A4", ""));
    }

    std::string on_terminal(const std::string& environment) const {
        write("command", "stty -onlcr; " + environment + " zebdb-cds diff old.xml new.xml; true\n");
        return run("script --quiet --return --command 'sh ./command' /dev/null").out;
    }
};

TEST_F(Diff, FitsIntoTheWidthOfTheEnvironmentAlsoInAPipe) {
    write("a.xml", cds_file(processor("CPU 1", {text("Processor Version", "one two three four")})));
    write("b.xml", cds_file(processor("CPU 1", {text("Processor Version", "one two three five")})));
    EXPECT_EQ(run("COLUMNS=40 zebdb-cds diff a.xml b.xml | cat").out,
              "Processors: 1 changed\n"
              "~ CPU 1: one two three five\n"
              "    Version  \"one two three four\" ->\n"
              "        \"one two three five\"\n");
}

TEST_F(DiffOnATerminal, IsColoredBySigns) {
    EXPECT_EQ(on_terminal(""),
              "\033[1mMemory: 1 added, 1 removed, 1 changed, 1 moved\033[0m\n"
              "\033[32m+ B2: serial number S3\033[0m\n"
              "\033[31m- A2: serial number S2\033[0m\n"
              "\033[33m~ A3\033[0m\n"
              "    DataWidth  - -> 64\n"
              "\033[36m> A1 -> B1: serial number S1\033[0m\n"
              "\033[35m! A4: 2 old and 2 new records, matched in order\033[0m\n");
}

TEST_F(DiffOnATerminal, IsThatOfAFileWithNoColor) {
    EXPECT_EQ(on_terminal("NO_COLOR=1"), diff().out);
}
