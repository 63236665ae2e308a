// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <string>

#include "support/recording_platform.h"
#include "support/sandboxed_test.h"

using testing::IsEmpty;

class ReadInventoryDigest : public sandboxed_test {
protected:
    void TearDown() override {
        EXPECT_THAT(platform.calls, IsEmpty()) << "digests are read in silence";
        sandboxed_test::TearDown();
    }

    void read() { read_inventory_digest(system_digest, pci_digest); }

    std::string system_digest = "old system";
    std::string pci_digest = "old pci";
    recording_platform platform;
};

TEST_F(ReadInventoryDigest, ReplacesBothStringsByTheFirstLines) {
    write_file(place::system_digest, "s1\nrest\n");
    write_file(place::pci_digest, "p1\n");
    read();
    EXPECT_EQ(system_digest, "s1");
    EXPECT_EQ(pci_digest, "p1");
}

TEST_F(ReadInventoryDigest, LeavesBothStringsWithoutTheFiles) {
    read();
    EXPECT_EQ(system_digest, "old system");
    EXPECT_EQ(pci_digest, "old pci");
}

TEST_F(ReadInventoryDigest, ReadsThePciDigestWithoutASystemDigest) {
    write_file(place::pci_digest, "p1\n");
    read();
    EXPECT_EQ(system_digest, "old system");
    EXPECT_EQ(pci_digest, "p1");
}

TEST_F(ReadInventoryDigest, ReadsTheSystemDigestWithoutAPciDigest) {
    write_file(place::system_digest, "s1\n");
    read();
    EXPECT_EQ(system_digest, "s1");
    EXPECT_EQ(pci_digest, "old pci");
}

TEST_F(ReadInventoryDigest, LeavesTheStringOfAFileInAMissingFolder) {
    make_folder_missing(place::system_digest);
    read();
    EXPECT_EQ(system_digest, "old system");
}

TEST_F(ReadInventoryDigest, EmptiesTheStringOfAnEmptyFile) {
    write_file(place::system_digest, "");
    write_file(place::pci_digest, "");
    read();
    EXPECT_EQ(system_digest, "");
    EXPECT_EQ(pci_digest, "");
}

TEST_F(ReadInventoryDigest, EmptiesTheStringOfAnEmptyFirstLine) {
    write_file(place::system_digest, "\ns1\n");
    read();
    EXPECT_EQ(system_digest, "");
}

TEST_F(ReadInventoryDigest, TakesALineWithoutALineEndWhole) {
    write_file(place::system_digest, "s1");
    write_file(place::pci_digest, "p1");
    read();
    EXPECT_EQ(system_digest, "s1");
    EXPECT_EQ(pci_digest, "p1");
}

TEST_F(ReadInventoryDigest, DropsNothingButTheLineEnd) {
    write_file(place::system_digest, " s1\t\r\n");
    read();
    EXPECT_EQ(system_digest, " s1\t\r");
}

TEST_F(ReadInventoryDigest, TakesLinesOfAnyLength) {
    write_file(place::system_digest, std::string(100000, 's') + "\n");
    read();
    EXPECT_EQ(system_digest, std::string(100000, 's'));
}

TEST_F(ReadInventoryDigest, ReadsReadOnlyFiles) {
    make_read_only(place::system_digest, "s1\n");
    read();
    EXPECT_EQ(system_digest, "s1");
}

TEST_F(ReadInventoryDigest, TakesADirectoryForAnEmptyFile) {
    make_directory(place::system_digest);
    write_file(place::pci_digest, "p1\n");
    read();
    EXPECT_EQ(system_digest, "");
    EXPECT_EQ(pci_digest, "p1");
}
