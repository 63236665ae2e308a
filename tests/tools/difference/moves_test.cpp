// SPDX-License-Identifier: Apache-2.0

// Parts that are recognised in another place.

#include <gmock/gmock.h>

#include "tools/difference/difference_test.h"

using testing::HasSubstr;

class Moves : public difference_test {};

TEST_F(Moves, AreRecognisedBySerialNumbers) {
    write_both(module("A1", "S1") + processor("CPU 1", {text("Serial Number", "P1")}),
               module("B1", "S1") + processor("CPU 2", {text("Serial Number", "P1")}));
    expect_different(
        "Processors: 1 moved\n"
        "> CPU 1 -> CPU 2: serial number P1\n"
        "\n"
        "Memory: 1 moved\n"
        "> A1 -> B1: serial number S1\n");
}

TEST_F(Moves, MayBeToAnotherServer) {
    write_both(server(module("A1", "S1"), "1") + server(module("C1", "S2"), "2"),
               server(module("A1", "S1") + module("C1", "S2"), "2"));
    expect_different(
        "Memory: 1 moved\n"
        "> A1, node 1 -> A1, node 2: serial number S1\n");
}

TEST_F(Moves, ListWhatChangedBesidesThePlace) {
    write_both(module("A1", "S1", {integer("Slot Number", "1"), integer("Size in MB", "16384")}),
               module("B1", "S1", {integer("Slot Number", "5"), integer("Size in MB", "8192")}));
    expect_different(
        "Memory: 1 moved\n"
        "> A1 -> B1: 8 GiB, serial number S1\n"
        "    SlotNo   1 -> 5\n"
        "    MemSize  16 GiB -> 8 GiB\n");
}

TEST_F(Moves, OfSwappedPartsAreTwo) {
    write_both(module("A1", "S1") + module("A2", "S2"), module("A1", "S2") + module("A2", "S1"));
    expect_different(
        "Memory: 2 moved\n"
        "> A2 -> A1: serial number S2\n"
        "> A1 -> A2: serial number S1\n");
}

TEST_F(Moves, LeaveTheirPlaceToAnotherPart) {
    write_both(module("A1", "S1") + module("A2", "S2"), module("A1", "S3") + module("A2", "S1"));
    expect_different(
        "Memory: 1 added, 1 removed, 1 moved\n"
        "+ A1: serial number S3\n"
        "- A2: serial number S2\n"
        "> A1 -> A2: serial number S1\n");
}

TEST_F(Moves, IntoAnEmptySlotLeaveOneBehind) {
    const std::vector<setting> size = {integer("Size in MB", "16384")};
    const std::vector<setting> none = {integer("Size in MB", "0"), text("Manufacturer", "NO DIMM")};
    write_both(module("A1", "S1", size) + module("A2", "NO DIMM", none),
               module("A1", "NO DIMM", none) + module("A2", "S1", size));
    expect_different(
        "Memory: 1 added, 1 removed, 1 moved\n"
        "+ A1: empty slot\n"
        "- A2: empty slot\n"
        "> A1 -> A2: 16 GiB, serial number S1\n");
}

TEST_F(Moves, DoNotCareForBlanksAroundTheSerialNumber) {
    write_both(module("A1", "S1"), module("B1", " S1 "));
    expect_different(
        "Memory: 1 moved\n"
        "> A1 -> B1: serial number S1\n");
}

TEST_F(Moves, AreNoneWhenAPartIsReplacedInItsPlace) {
    write_both(module("A1", "S1"), module("A1", "S2"));
    expect_different(
        "Memory: 1 changed\n"
        "~ A1: serial number S2\n"
        "    SerialNo  \"S1\" -> \"S2\"\n");
}

TEST_F(Moves, AreNoneOfAPartWithoutASerialNumber) {
    write_both(module("A1", ""), module("B1", ""));
    expect_different(
        "Memory: 1 added, 1 removed\n"
        "+ B1\n"
        "- A1\n");
}

TEST_F(Moves, AreNoneOfASerialNumberThatOneInventoryHasTwice) {
    write_both(module("A1", "S1") + module("A2", "S1"), module("A1", "S1") + module("B1", "S1"));
    expect_different(
        "Memory: 1 added, 1 removed\n"
        "+ B1: serial number S1\n"
        "- A2: serial number S1\n"
        "! one serial number in several records, so what moved is not known: old A1 and A2; new A1 and B1\n");
}

TEST_F(Moves, AreNotAskedForWhereEveryRecordOfASerialNumberStaysInItsPlace) {
    write_both(module("A1", "S1") + module("A2", "S1"), module("A2", "S1") + module("A1", "S1"));
    expect_same("No difference.\n");
}

TEST_F(Moves, NameOnlyTheFirstOfManyRecordsOfASerialNumber) {
    std::string before;
    for (int i = 1; i <= 9; ++i) {
        before += module("A" + std::to_string(i), "S1");
    }
    write_both(before, module("B1", "S1"));
    EXPECT_THAT(difference_text(difference(), {}),
                HasSubstr("is not known: old A1 and A2 and A3 and 6 more; new B1\n"));
}

TEST_F(Moves, AreNoneOfAPlaceholderForASerialNumber) {
    write_both(module("A1", "Not Specified"), module("B1", "Not Specified"));
    expect_different(
        "Memory: 1 added, 1 removed\n"
        "+ B1\n"
        "- A1\n");
}
