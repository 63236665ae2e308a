// SPDX-License-Identifier: Apache-2.0

// Several records of one place.

#include <gmock/gmock.h>

#include "tools/difference/difference_test.h"

namespace {

std::string sized(const std::string& locator, const std::string& megabytes, const std::string& serial = "") {
    return module(locator, serial, {integer("Size in MB", megabytes)});
}

}  // namespace

class Collisions : public difference_test {};

TEST_F(Collisions, AreReportedAlsoWhereNothingDiffers) {
    write_both(sized("A1", "1024") + sized("A1", "1024"), sized("A1", "1024") + sized("A1", "1024"));
    expect_same(
        "Memory: no difference\n"
        "! A1: 2 old and 2 new records, matched in order\n");
}

TEST_F(Collisions, AreMatchedInOrder) {
    write_both(sized("A1", "1024") + sized("A1", "2048"), sized("A1", "3072") + sized("A1", "4096"));
    expect_different(
        "Memory: 2 changed\n"
        "~ A1: 3 GiB\n"
        "    MemSize  1 GiB -> 3 GiB\n"
        "~ A1: 4 GiB\n"
        "    MemSize  2 GiB -> 4 GiB\n"
        "! A1: 2 old and 2 new records, matched in order\n");
}

TEST_F(Collisions, MatchEqualRecordsFirst) {
    write_both(sized("A1", "1024") + sized("A1", "2048") + sized("A1", "3072"),
               sized("A1", "3072") + sized("A1", "2048"));
    expect_different(
        "Memory: 1 removed\n"
        "- A1: 1 GiB\n"
        "! A1: 3 old and 2 new records, matched in order\n");
}

TEST_F(Collisions, MatchSerialNumbersBeforeTheRest) {
    write_both(sized("A1", "1024", "S1") + sized("A1", "1024", "S2"),
               sized("A1", "2048", "S2") + sized("A1", "1024", "S1"));
    expect_different(
        "Memory: 1 changed\n"
        "~ A1: 2 GiB, serial number S2\n"
        "    MemSize  1 GiB -> 2 GiB\n"
        "! A1: 2 old and 2 new records, matched in order\n");
}

TEST_F(Collisions, AddWhatIsLeft) {
    write_both(sized("A1", "1024"), sized("A1", "1024") + sized("A1", "2048"));
    expect_different(
        "Memory: 1 added\n"
        "+ A1: 2 GiB\n"
        "! A1: 1 old and 2 new records, matched in order\n");
}

TEST_F(Collisions, AreReportedOfRecordsThatOnlyOneInventoryHas) {
    write_both("", sized("A1", "1024") + sized("A1", "1024"));
    expect_different(
        "Memory: 2 added\n"
        "+ A1: 1 GiB\n"
        "+ A1: 1 GiB\n"
        "! A1: 0 old and 2 new records, matched in order\n");
}

TEST_F(Collisions, AreThoseOfRecordsThatNothingIdentifies) {
    const std::string nameless = cds_component("memory_info", {integer("Size in MB", "1024")});
    write_both(nameless + nameless, nameless);
    expect_different(
        "Memory: 1 removed\n"
        "- unnamed: 1 GiB\n"
        "! unnamed: 2 old and 1 new records, matched in order\n");
}

TEST_F(Collisions, AreReportedWhenTheServersThatHeldThemApartWereGivenOtherIndexes) {
    write_both(server(bridge("1"), "1") + server(bridge("1"), "2"),
               server(bridge("1"), "3") + server(bridge("1"), "4"));
    expect_different(
        "Bridges: 2 changed\n"
        "~ 0000:01:00.0, node 3\n"
        "    NodeIndex  1 -> 3\n"
        "~ 0000:01:00.0, node 4\n"
        "    NodeIndex  2 -> 4\n"
        "! 0000:01:00.0, node 1: 2 old and 2 new records, matched in order\n");
}

TEST_F(Collisions, AreNoneOfEqualAddressesInSeveralNewServers) {
    write_both("", server(bridge("1"), "1") + server(bridge("1"), "2"));
    expect_different(
        "Bridges: 2 added\n"
        "+ 0000:01:00.0, node 1\n"
        "+ 0000:01:00.0, node 2\n");
}

TEST_F(Collisions, TellAnAbsentColumnFromAnEmptyText) {
    const std::string absent = cds_component("memory_info", {text("Device Locator", "A1")});
    write_both(absent, absent);
    put(new_tables, kinds::memory, "BankLocator", "");
    expect_different(
        "Memory: 1 added, 1 removed\n"
        "+ A1\n"
        "- A1\n");
}
