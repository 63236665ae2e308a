#include <gmock/gmock.h>

#include "support/diff_test.h"

class DiffMoves : public diff_test {};

TEST_F(DiffMoves, AreRecognisedBySerialNumbers) {
    write_both(module("A1", "S1") + processor("CPU 1", {text("Serial Number", "P1")}),
               module("B1", "S1") + processor("CPU 2", {text("Serial Number", "P1")}));
    expect_diff(1,
                "Processors: 1 moved\n"
                "> CPU 1 -> CPU 2: serial number P1\n"
                "\n"
                "Memory: 1 moved\n"
                "> A1 -> B1: serial number S1\n");
}

TEST_F(DiffMoves, MayBeToAnotherServer) {
    write_both(server(module("A1", "S1"), "1"), server(module("A1", "S1"), "2"));
    expect_diff(1,
                "Memory: 1 moved\n"
                "> A1, node 1 -> A1, node 2: serial number S1\n");
}

TEST_F(DiffMoves, ListWhatChangedBesidesThePlace) {
    write_both(module("A1", "S1", {integer("Slot Number", "1"), integer("Size in MB", "16384")}),
               module("B1", "S1", {integer("Slot Number", "5"), integer("Size in MB", "8192")}));
    expect_diff(1,
                "Memory: 1 moved\n"
                "> A1 -> B1: 8 GiB, serial number S1\n"
                "    SlotNo   1 -> 5\n"
                "    MemSize  16 GiB -> 8 GiB\n");
}

TEST_F(DiffMoves, OfSwappedPartsAreTwo) {
    write_both(module("A1", "S1") + module("A2", "S2"), module("A1", "S2") + module("A2", "S1"));
    expect_diff(1,
                "Memory: 2 moved\n"
                "> A2 -> A1: serial number S2\n"
                "> A1 -> A2: serial number S1\n");
}

TEST_F(DiffMoves, LeaveTheirPlaceToAnotherPart) {
    write_both(module("A1", "S1") + module("A2", "S2"), module("A1", "S3") + module("A2", "S1"));
    expect_diff(1,
                "Memory: 1 added, 1 removed, 1 moved\n"
                "+ A1: serial number S3\n"
                "- A2: serial number S2\n"
                "> A1 -> A2: serial number S1\n");
}

TEST_F(DiffMoves, IntoAnEmptySlotLeaveOneBehind) {
    const std::vector<setting> size = {integer("Size in MB", "16384")};
    const std::vector<setting> none = {integer("Size in MB", "0"), text("Manufacturer", "NO DIMM")};
    write_both(module("A1", "S1", size) + module("A2", "NO DIMM", none),
               module("A1", "NO DIMM", none) + module("A2", "S1", size));
    expect_diff(1,
                "Memory: 1 added, 1 removed, 1 moved\n"
                "+ A1: empty slot\n"
                "- A2: empty slot\n"
                "> A1 -> A2: 16 GiB, serial number S1\n");
}

TEST_F(DiffMoves, DoNotCareForBlanksAroundTheSerialNumber) {
    write_both(module("A1", "S1"), module("B1", " S1 "));
    expect_diff(1,
                "Memory: 1 moved\n"
                "> A1 -> B1: serial number S1\n"
                "    SerialNo  \"S1\" -> \" S1 \"\n");
}

TEST_F(DiffMoves, AreNoneWhenAPartIsReplacedInItsPlace) {
    write_both(module("A1", "S1"), module("A1", "S2"));
    expect_diff(1,
                "Memory: 1 changed\n"
                "~ A1: serial number S2\n"
                "    SerialNo  \"S1\" -> \"S2\"\n");
}

TEST_F(DiffMoves, AreNoneOfAPartWithoutASerialNumber) {
    write_both(module("A1", ""), module("B1", ""));
    expect_diff(1,
                "Memory: 1 added, 1 removed\n"
                "+ B1\n"
                "- A1\n");
}

TEST_F(DiffMoves, AreNoneOfASerialNumberThatOneInventoryHasTwice) {
    write_both(module("A1", "S1") + module("A2", "S1"), module("A1", "S1") + module("B1", "S1"));
    expect_diff(1,
                "Memory: 1 added, 1 removed\n"
                "+ B1: serial number S1\n"
                "- A2: serial number S1\n"
                "! one serial number in several records, so what moved is not known: old A1 and A2; new A1 and B1\n");
}

TEST_F(DiffMoves, AreNotAskedForWhereEveryRecordOfASerialNumberStaysInItsPlace) {
    write_both(module("A1", "S1") + module("A2", "S1"), module("A2", "S1") + module("A1", "S1"));
    expect_diff(0, "No difference.\n");
}

TEST_F(DiffMoves, NameOnlyTheFirstOfManyRecordsOfASerialNumber) {
    std::string before;
    for (int i = 1; i <= 9; ++i) {
        before += module("A" + std::to_string(i), "S1");
    }
    write_both(before, module("B1", "S1"));
    EXPECT_THAT(diff().out, testing::HasSubstr("is not known: old A1 and A2 and A3 and 6 more; new B1\n"));
}

class Placeholder : public diff_test, public testing::WithParamInterface<const char*> {};

TEST_P(Placeholder, IsNoSerialNumberToRecogniseAPartBy) {
    write_both(module("A1", GetParam()), module("B1", GetParam()));
    expect_diff(1,
                "Memory: 1 added, 1 removed\n"
                "+ B1\n"
                "- A1\n");
}

INSTANTIATE_TEST_SUITE_P(DiffMoves, Placeholder,
                         testing::Values(" ", "...", "0", "00000000", "0x00000000", "0xFFFFFFFF", "XXXXXXXX", "----",
                                         "00-00-00-00", "Not Specified", "NOT SPECIFIED", "NO DIMM", "NoDimm",
                                         "Unknown", "[Unknown]", "N/A", "To Be Filled By O.E.M.", "To be filled by OEM",
                                         "Default string", "None", "NULL", "Empty", "Not Available", "0123456789",
                                         "&lt;OUT OF SPEC&gt;"));

class SerialNumber : public diff_test, public testing::WithParamInterface<const char*> {};

TEST_P(SerialNumber, RecognisesAPart) {
    write_both(module("A1", GetParam()), module("B1", GetParam()));
    expect_diff(1, std::string("Memory: 1 moved\n> A1 -> B1: serial number ") + GetParam() + "\n");
}

INSTANTIATE_TEST_SUITE_P(DiffMoves, SerialNumber,
                         testing::Values("S1", "01", "00000001", "0x10000000", "None1", "12345679"));
