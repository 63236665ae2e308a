#include <gmock/gmock.h>

#include "support/cds_text.h"
#include "support/diff_test.h"
#include "support/quoted.h"

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Diff : public diff_test {};

TEST_F(Diff, OfEqualInventoriesSaysSo) {
    const std::string inventory = processor("CPU 1") + module("A1", "S1") + bridge("1") + function("2");
    write_both(inventory, inventory);
    expect_diff(0, "No difference.\n");
}

TEST_F(Diff, OfAServerWithItsDatabaseSaysSo) {
    ASSERT_EQ(run("cp " + quoted(SAMPLES_DIR "/two-socket-server.xml") + " old.xml").status, 0);
    load("old.xml", "old.db");
    const command_result result = diff("old.xml old.db");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "No difference.\n");
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(Diff, OfAServerWithSwappedModulesFindsThem) {
    ASSERT_EQ(run("cp " + quoted(SAMPLES_DIR "/two-socket-server.xml") +
                  " old.xml && "
                  "sed 's/>03A00000</>x</; s/>03A00002</>03A00000</; s/>x</>03A00002</' old.xml >new.xml")
                  .status,
              0);
    expect_diff(1,
                "Memory: 2 moved\n"
                "> CPU1_DIMM_B1, NODE 1 CHANNEL 1 DIMM 0, node 1 -> CPU1_DIMM_A1, NODE 1 CHANNEL 0 DIMM 0, node 1: "
                "32 GiB, DDR4, Samsung, M393A4K40CB2-CVF, serial number 03A00002\n"
                "    SlotNo    3 -> 1\n"
                "    AssetTag  \"CPU1_DIMM_B1_AssetTag\" -> \"CPU1_DIMM_A1_AssetTag\"\n"
                "> CPU1_DIMM_A1, NODE 1 CHANNEL 0 DIMM 0, node 1 -> CPU1_DIMM_B1, NODE 1 CHANNEL 1 DIMM 0, node 1: "
                "32 GiB, DDR4, Samsung, M393A4K40CB2-CVF, serial number 03A00000\n"
                "    SlotNo    1 -> 3\n"
                "    AssetTag  \"CPU1_DIMM_A1_AssetTag\" -> \"CPU1_DIMM_B1_AssetTag\"\n");
}

TEST_F(Diff, CallsPartsTheSameInWhateverOrderTheyAreListed) {
    write_both(module("A1", "S1") + module("A2", "") + function("1") + function("2"),
               function("2") + module("A2", "") + function("1") + module("A1", "S1"));
    expect_diff(0, "No difference.\n");
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

TEST_F(Diff, WritesValuesInTheirUnits) {
    write_both(module("A1", "",
                      {integer("Size in MB", "32768"), integer("Configured Memory Clock Speed", "2933"),
                       integer("Slot Number", "-1"), integer("Data Width", "64")}),
               module("A1", "",
                      {integer("Size in MB", "65536"), integer("Configured Memory Clock Speed", "2666"),
                       integer("Slot Number", "3"), integer("Data Width", "72")}));
    expect_diff(1,
                "Memory: 1 changed\n"
                "~ A1: 64 GiB\n"
                "    SlotNo      - -> 3\n"
                "    DataWidth   64 -> 72\n"
                "    MemSize     32 GiB -> 64 GiB\n"
                "    ClockSpeed  2933 MT/s -> 2666 MT/s\n");
}

TEST_F(Diff, WritesPlainNumbersWhereTheUnitWouldHideTheDifference) {
    write_both(module("A1", "", {integer("Size in MB", "129408")}),
               module("A1", "", {integer("Size in MB", "129409")}));
    expect_diff(1,
                "Memory: 1 changed\n"
                "~ A1: 126.4 GiB\n"
                "    MemSize  129408 -> 129409\n");
}

TEST_F(Diff, QuotesTextsSoThatEveryDifferenceShows) {
    write_both(module("A1", "", {text("Part Number", "P")}),
               module("A1", "", {text("Part Number", "P "), text("Manufacturer", "-")}));
    expect_diff(1,
                "Memory: 1 changed\n"
                "~ A1: P\n"
                "    Manufacturer  - -> \"-\"\n"
                "    PartNo        \"P\" -> \"P \"\n");
}

TEST_F(Diff, LetsNoTextSteerTheTerminal) {
    write_both(module("A1", "", {text("Part Number", "P")}), module("A1", "", {text("Part Number", "P&#x9;&#x85;Q")}));
    EXPECT_THAT(diff().out, HasSubstr("    PartNo  \"P\" -> \"P\\t\\x85Q\"\n"));
}

TEST_F(Diff, TakesARemovedColumnForAbsent) {
    write_both(processor("CPU 1", {integer("Voltage", "12")}), processor("CPU 1"));
    expect_diff(1,
                "Processors: 1 changed\n"
                "~ CPU 1\n"
                "    Voltage  12 -> -\n");
}

TEST_F(Diff, ShowsTheParentOfAPartByItsAddress) {
    write_both(bridge("1", {}, function("9")) + bridge("2"), bridge("1") + bridge("2", {}, function("9")));
    expect_diff(1,
                "Devices: 1 changed\n"
                "~ 0000:09:00.0\n"
                "    Bridge  \"0000:01:00.0\" -> \"0000:02:00.0\"\n");
}

TEST_F(Diff, ShowsTheParentsOfBridgesAndMemoryToo) {
    write_both(bridge("1", {}, bridge("2") + module("A1", "")), bridge("1") + bridge("2") + module("A1", ""));
    expect_diff(1,
                "Memory: 1 changed\n"
                "~ A1\n"
                "    Array  \"0000:01:00.0\" -> -\n"
                "\n"
                "Bridges: 1 changed\n"
                "~ 0000:02:00.0\n"
                "    Parent  \"0000:01:00.0\" -> -\n");
}

TEST_F(Diff, DoesNotTakeAnotherRowIdOfTheSameParentForAChange) {
    write_both(bridge("2", {}, function("9") + module("A1", "")),
               bridge("1") + bridge("2", {}, function("9") + module("A1", "")));
    expect_diff(1,
                "Bridges: 1 added\n"
                "+ 0000:01:00.0\n");
}

TEST_F(Diff, SaysThatAParentIsNotInTheInventory) {
    write_both(function("9"), function("9"));
    load("old.xml", "old.db");
    execute("old.db", "UPDATE PCIs SET BridgeId = 17");
    EXPECT_EQ(diff("old.db new.xml").out,
              "Devices: 1 changed\n"
              "~ 0000:09:00.0\n"
              "    Bridge  \"missing\" -> -\n");
}

TEST_F(Diff, KeepsTheServersOfAnEnclosureApart) {
    const std::string first = server(bridge("1") + function("2", {integer("Slot Number", "1")}), "1");
    const std::string second = server(bridge("1") + function("2", {integer("Slot Number", "2")}), "2");
    const std::string third = server(bridge("1") + function("2", {integer("Slot Number", "3")}), "3");
    write_both(first + second + third, first + third);
    expect_diff(1,
                "Bridges: 1 removed\n"
                "- 0000:01:00.0, node 2\n"
                "\n"
                "Devices: 1 removed\n"
                "- 0000:02:00.0, node 2: slot 2\n");
}

TEST_F(Diff, RecognisesAddressesWhenTheServerWasGivenAnotherIndex) {
    write_both(server(bridge("1"), "1"), server(bridge("1"), "2"));
    expect_diff(1,
                "Bridges: 1 changed\n"
                "~ 0000:01:00.0, node 2\n"
                "    NodeIndex  1 -> 2\n");
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

TEST_F(Diff, OfManyPartsFindsTheOnesThatDiffer) {
    constexpr int count = 3000;
    std::string before;
    std::string now;
    for (int i = 0; i < count; ++i) {
        before += module("A" + std::to_string(i), "SN" + std::to_string(i));
        const int other = count - 1 - i;
        now += module("A" + std::to_string(other), "SN" + std::to_string(other == 7 ? 8 : other == 8 ? 7 : other));
    }
    write_both(before, now);
    expect_diff(1,
                "Memory: 2 moved\n"
                "> A7 -> A8: serial number SN7\n"
                "> A8 -> A7: serial number SN8\n");
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
