// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "rows/redaction.h"
#include "tools/difference/difference_test.h"

using testing::HasSubstr;

namespace {

std::string content_of(const char* path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

}  // namespace

class DifferenceText : public difference_test {};

TEST_F(DifferenceText, OfEqualInventoriesSaysSo) {
    const std::string inventory = processor("CPU 1") + module("A1", "S1") + bridge("1") + function("2");
    write_both(inventory, inventory);
    expect_same("No difference.\n");
}

TEST_F(DifferenceText, CallsPartsTheSameInWhateverOrderTheyAreListed) {
    write_both(module("A1", "S1") + module("A2", "") + function("1") + function("2"),
               function("2") + module("A2", "") + function("1") + module("A1", "S1"));
    expect_same("No difference.\n");
}

TEST_F(DifferenceText, ListsEveryKindWithItsSigns) {
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
    expect_different(
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

TEST_F(DifferenceText, WritesValuesInTheirUnits) {
    write_both(module("A1", "",
                      {integer("Size in MB", "32768"), integer("Configured Memory Clock Speed", "2933"),
                       integer("Slot Number", "-1"), integer("Data Width", "64")}),
               module("A1", "",
                      {integer("Size in MB", "65536"), integer("Configured Memory Clock Speed", "2666"),
                       integer("Slot Number", "3"), integer("Data Width", "72")}));
    expect_different(
        "Memory: 1 changed\n"
        "~ A1: 64 GiB\n"
        "    SlotNo      - -> 3\n"
        "    DataWidth   64 -> 72\n"
        "    MemSize     32 GiB -> 64 GiB\n"
        "    ClockSpeed  2933 MT/s -> 2666 MT/s\n");
}

TEST_F(DifferenceText, WritesPlainNumbersWhereTheUnitWouldHideTheDifference) {
    write_both(module("A1", "", {integer("Size in MB", "129408")}),
               module("A1", "", {integer("Size in MB", "129409")}));
    expect_different(
        "Memory: 1 changed\n"
        "~ A1: 126.4 GiB\n"
        "    MemSize  129408 -> 129409\n");
}

TEST_F(DifferenceText, QuotesTextsSoThatEveryDifferenceShows) {
    write_both(module("A1", "", {text("Asset Tag", "T")}),
               module("A1", "", {text("Asset Tag", "T "), text("Manufacturer", "-")}));
    expect_different(
        "Memory: 1 changed\n"
        "~ A1\n"
        "    Manufacturer  - -> \"-\"\n"
        "    AssetTag      \"T\" -> \"T \"\n");
}

TEST_F(DifferenceText, TellsOfASerialNumberThatOneInventoryLacks) {
    write_both(module("A1", "S1") + module("A2", ""), module("A1", "") + module("A2", "S2"));
    expect_different(
        "Memory: 2 changed\n"
        "~ A1\n"
        "    SerialNo  \"S1\" -> -\n"
        "~ A2: serial number S2\n"
        "    SerialNo  - -> \"S2\"\n");
}

TEST_F(DifferenceText, TakesARemovedColumnForAbsent) {
    write_both(processor("CPU 1", {integer("Voltage", "12")}), processor("CPU 1"));
    expect_different(
        "Processors: 1 changed\n"
        "~ CPU 1\n"
        "    Voltage  12 -> -\n");
}

TEST_F(DifferenceText, ShowsTheParentOfAPartByItsAddress) {
    write_both(bridge("1", {}, function("9")) + bridge("2"), bridge("1") + bridge("2", {}, function("9")));
    expect_different(
        "Devices: 1 changed\n"
        "~ 0000:09:00.0\n"
        "    BridgeId  \"0000:01:00.0\" -> \"0000:02:00.0\"\n");
}

TEST_F(DifferenceText, ShowsTheParentsOfBridgesAndMemoryToo) {
    write_both(bridge("1", {}, bridge("2") + module("A1", "")), bridge("1") + bridge("2") + module("A1", ""));
    expect_different(
        "Memory: 1 changed\n"
        "~ A1\n"
        "    ArrayId  \"0000:01:00.0\" -> -\n"
        "\n"
        "Bridges: 1 changed\n"
        "~ 0000:02:00.0\n"
        "    ParentId  \"0000:01:00.0\" -> -\n");
}

TEST_F(DifferenceText, DoesNotTakeAnotherRowIdOfTheSameParentForAChange) {
    write_both(bridge("2", {}, function("9") + module("A1", "")),
               bridge("1") + bridge("2", {}, function("9") + module("A1", "")));
    expect_different(
        "Bridges: 1 added\n"
        "+ 0000:01:00.0\n");
}

TEST_F(DifferenceText, KeepsTheServersOfAnEnclosureApart) {
    const std::string first = server(bridge("1") + function("2", {integer("Slot Number", "1")}), "1");
    const std::string second = server(bridge("1") + function("2", {integer("Slot Number", "2")}), "2");
    const std::string third = server(bridge("1") + function("2", {integer("Slot Number", "3")}), "3");
    write_both(first + second + third, first + third);
    expect_different(
        "Bridges: 1 removed\n"
        "- 0000:01:00.0, node 2\n"
        "\n"
        "Devices: 1 removed\n"
        "- 0000:02:00.0, node 2: slot 2\n");
}

TEST_F(DifferenceText, RecognisesAddressesWhenTheServerWasGivenAnotherIndex) {
    write_both(server(bridge("1"), "1") + server(bridge("2"), "3"), server(bridge("1") + bridge("2"), "3"));
    expect_different(
        "Bridges: 1 changed\n"
        "~ 0000:01:00.0, node 3\n"
        "    NodeIndex  1 -> 3\n");
}

TEST_F(DifferenceText, OfManyPartsFindsTheOnesThatDiffer) {
    constexpr int count = 3000;
    std::string before;
    std::string now;
    for (int i = 0; i < count; ++i) {
        before += module("A" + std::to_string(i), "SN" + std::to_string(i));
        const int other = count - 1 - i;
        now += module("A" + std::to_string(other), "SN" + std::to_string(other == 7 ? 8 : other == 8 ? 7 : other));
    }
    write_both(before, now);
    expect_different(
        "Memory: 2 moved\n"
        "> A7 -> A8: serial number SN7\n"
        "> A8 -> A7: serial number SN8\n");
}

TEST_F(DifferenceText, OfAServerWithSwappedModulesFindsThem) {
    const std::string server = content_of(SAMPLES_DIR "/two-socket-server.xml");
    const std::string taken_out = replaced(replaced(server, ">03A00000<", ">x<"), ">03A00002<", ">03A00000<");
    old_tables = loaded_inventory(server).read_all();
    new_tables = loaded_inventory(replaced(taken_out, ">x<", ">03A00002<")).read_all();
    expect_different(
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

TEST_F(DifferenceText, LetsNoTextSteerTheTerminal) {
    write_both(module("A1", "", {text("Part Number", "P")}), module("A1", "", {text("Part Number", "P&#x9;&#x85;Q")}));
    EXPECT_THAT(difference_text(difference(), {}), HasSubstr("    PartNo  \"P\" -> \"P\\t\\x85Q\"\n"));
}

TEST_F(DifferenceText, SaysThatAParentIsNotInTheInventory) {
    write_both(function("9"), function("9"));
    put(old_tables, kinds::devices, "BridgeId", std::int64_t{17});
    expect_different(
        "Devices: 1 changed\n"
        "~ 0000:09:00.0\n"
        "    BridgeId  \"missing\" -> -\n");
}

TEST_F(DifferenceText, HidesWhatIsRedactedAndTellsAllTheSameThatItMoved) {
    write_both(module("A1", "SECRET1", {text("Asset Tag", "SECRET2")}) + module("A2", "SECRET3"),
               module("B1", "SECRET1", {text("Asset Tag", "SECRET4")}) + module("A2", "SECRET5"));
    comparison compared = difference();
    for (table_difference& each : compared.kinds) {
        redact(each.old_table);
        redact(each.new_table);
    }
    EXPECT_EQ(difference_text(compared, {}),
              "Memory: 1 changed, 1 moved\n"
              "~ A2: serial number [redacted]\n"
              "    SerialNo  \"[redacted]\" -> \"[redacted]\"\n"
              "> A1 -> B1: serial number [redacted]\n"
              "    AssetTag  \"[redacted]\" -> \"[redacted]\"\n");
}

TEST_F(DifferenceText, IsColouredBySignsWhereControlSequencesAreUnderstood) {
    write_both(module("A1", "S1") + module("A2", "S2") + module("A3", "") + module("A4", "") + module("A4", ""),
               module("B1", "S1") + module("B2", "S3") + module("A3", "", {integer("Data Width", "64")}) +
                   module("A4", "") + module("A4", ""));
    text_style style;
    style.has_control_sequences = true;
    EXPECT_EQ(difference_text(difference(), style),
              "\033[1mMemory: 1 added, 1 removed, 1 changed, 1 moved\033[0m\n"
              "\033[32m+ B2: serial number S3\033[0m\n"
              "\033[31m- A2: serial number S2\033[0m\n"
              "\033[33m~ A3\033[0m\n"
              "    DataWidth  - -> 64\n"
              "\033[36m> A1 -> B1: serial number S1\033[0m\n"
              "\033[35m! A4: 2 old and 2 new records, matched in order\033[0m\n");
}

TEST_F(DifferenceText, TakesAColumnThatOneInventoryLacksForAbsent) {
    write_both(module("B1", "S1"), module("B1", "S1"));
    inventory_table& memory = old_tables[1];
    ASSERT_EQ(memory.kind, &kinds::memory);
    memory = {&kinds::memory,
              {"DevLocator", "SerialNo", "NodeIndex", "ArrayId", "Color"},
              {inventory_row(memory, 0).values({"DevLocator", "SerialNo", "NodeIndex", "ArrayId"})}};
    memory.rows[0].emplace_back("blue");
    expect_different(
        "Memory: 1 changed\n"
        "~ B1: serial number S1\n"
        "    Color  \"blue\" -> -\n");
}
