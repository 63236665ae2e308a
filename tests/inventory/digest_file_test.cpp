// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <string>

#include "inventory/input_files.h"
#include "support/recording_platform.h"
#include "support/sandboxed_test.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// What sha384sum gives for "abc" and for nothing.
const std::string digest_of_abc =
    "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded163"
    "1a8b605a43ff5bed8086072ba1e7cc2358baeca134c825a7";
const std::string digest_of_nothing =
    "38b060a751ac96384cd9327eb1b1e36a21fdb71114be0743"
    "4c0cc7bf63f6e1da274edebfe76f65fbd51ad2f14898b95b";

// A path below /tmp of so many characters.
std::string path_of_length(std::size_t length) {
    const std::string folder = "/tmp/";
    return folder + std::string(length - folder.size(), 'f');
}

std::string digest_command(const std::string& path) {
    return "sha384sum " + path + " | awk '{ print $1 }'";
}

std::string save_command(const std::string& path) {
    return digest_command(path) + " > " + path + ".digest";
}

}  // namespace

class SavePciDigest : public sandboxed_test {
protected:
    SavePciDigest() { platform.run_commands(); }

    void SetUp() override {
        sandboxed_test::SetUp();
        write_file(first_input, "abc");
        write_file(second_input, "");
    }

    recording_platform platform;
};

TEST_F(SavePciDigest, WritesEachDigestAs96LowercaseDigitsAndALineEnd) {
    EXPECT_EQ(save_pci_digest(first_input, second_input), 0);
    EXPECT_EQ(content_of("/tmp/first.xml.digest"), digest_of_abc + "\n");
    EXPECT_EQ(content_of("/tmp/second.xml.digest"), digest_of_nothing + "\n");
    EXPECT_THAT(platform.calls,
                ElementsAre("system " + save_command(first_input), "system " + save_command(second_input)));
}

TEST_F(SavePciDigest, ReplacesOlderDigests) {
    write_file("/tmp/first.xml.digest", std::string(1000, 'x'));
    EXPECT_EQ(save_pci_digest(first_input, second_input), 0);
    EXPECT_EQ(content_of("/tmp/first.xml.digest"), digest_of_abc + "\n");
}

TEST_F(SavePciDigest, WritesNothingWhenTheFirstFileIsMissing) {
    EXPECT_EQ(save_pci_digest("/tmp/missing.xml", second_input), -1);
    EXPECT_FALSE(exists("/tmp/missing.xml.digest"));
    EXPECT_FALSE(exists("/tmp/second.xml.digest"));
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(SavePciDigest, KeepsTheFirstDigestWhenTheSecondFileIsMissing) {
    EXPECT_EQ(save_pci_digest(first_input, "/tmp/missing.xml"), -1);
    EXPECT_EQ(content_of("/tmp/first.xml.digest"), digest_of_abc + "\n");
    EXPECT_FALSE(exists("/tmp/missing.xml.digest"));
    EXPECT_THAT(platform.calls, ElementsAre("system " + save_command(first_input)));
}

TEST_F(SavePciDigest, WritesNothingForANullFirstPath) {
    EXPECT_EQ(save_pci_digest(nullptr, second_input), -1);
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(SavePciDigest, KeepsTheFirstDigestForANullSecondPath) {
    EXPECT_EQ(save_pci_digest(first_input, nullptr), -1);
    EXPECT_EQ(content_of("/tmp/first.xml.digest"), digest_of_abc + "\n");
    EXPECT_THAT(platform.calls, ElementsAre("system " + save_command(first_input)));
}

TEST_F(SavePciDigest, StopsWithAnErrorWhenTheFirstCommandFails) {
    platform.fail("system", 256);
    EXPECT_EQ(save_pci_digest(first_input, second_input), -1);
    EXPECT_THAT(platform.calls, ElementsAre("system " + save_command(first_input),
                                            "ERROR: save_pci_digest: generating /tmp/first.xml.digest failed!"));
}

TEST_F(SavePciDigest, KeepsTheFirstDigestWhenTheSecondCommandFails) {
    platform.fail_once("system", 2, -1);
    EXPECT_EQ(save_pci_digest(first_input, second_input), -1);
    EXPECT_EQ(content_of("/tmp/first.xml.digest"), digest_of_abc + "\n");
    EXPECT_THAT(platform.log, ElementsAre("ERROR: save_pci_digest: generating /tmp/second.xml.digest failed!"));
}

TEST_F(SavePciDigest, FailsOnAReadOnlyFolder) {
    make_read_only_folder("/tmp/read-only", {"first.xml"});
    EXPECT_EQ(save_pci_digest("/tmp/read-only/first.xml", second_input), -1);
    EXPECT_FALSE(exists("/tmp/read-only/first.xml.digest"));
    EXPECT_THAT(platform.log,
                ElementsAre("ERROR: save_pci_digest: generating /tmp/read-only/first.xml.digest failed!"));
}

TEST_F(SavePciDigest, FailsWhenADirectoryIsInTheDigestsPlace) {
    make_directory("/tmp/first.xml.digest");
    EXPECT_EQ(save_pci_digest(first_input, second_input), -1);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: save_pci_digest: generating /tmp/first.xml.digest failed!"));
}

TEST_F(SavePciDigest, FailsOnAFullDisk) {
    {
        const file_size_limit full(0);
        EXPECT_EQ(save_pci_digest(first_input, second_input), -1);
    }
    EXPECT_EQ(content_of("/tmp/first.xml.digest"), "");
    EXPECT_THAT(platform.log, ElementsAre("ERROR: save_pci_digest: generating /tmp/first.xml.digest failed!"));
}

// The status of the shell's pipeline is awk's.
TEST_F(SavePciDigest, LeavesAnEmptyDigestOfAFileThatCannotBeHashedAndSucceeds) {
    make_directory("/tmp/folder");
    EXPECT_EQ(save_pci_digest("/tmp/folder", second_input), 0);
    EXPECT_EQ(content_of("/tmp/folder.digest"), "");
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(SavePciDigest, TakesAPathOf43Characters) {
    const std::string path = path_of_length(43);
    write_file(path, "abc");
    EXPECT_EQ(save_pci_digest(path.c_str(), second_input), 0);
    EXPECT_EQ(platform.calls.front(), "system " + save_command(path));
    EXPECT_EQ(save_command(path).size(), 127u);
    EXPECT_EQ(content_of(path + ".digest"), digest_of_abc + "\n");
}

TEST_F(SavePciDigest, WritesTheDigestOfAPathOf44CharactersUnderACutName) {
    const std::string path = path_of_length(44);
    write_file(path, "abc");
    EXPECT_EQ(save_pci_digest(path.c_str(), second_input), 0);
    EXPECT_EQ(platform.calls.front(), "system " + save_command(path).substr(0, 127));
    EXPECT_FALSE(exists(path + ".digest"));
    EXPECT_EQ(content_of(path + ".dige"), digest_of_abc + "\n");
}

TEST_F(SavePciDigest, FailsWhenTheCutLeavesNoCommandThatAShellTakes) {
    const std::string path = path_of_length(97);
    write_file(path, "abc");
    EXPECT_EQ(save_pci_digest(path.c_str(), second_input), -1);
    EXPECT_THAT(platform.calls, ElementsAre("system " + save_command(path).substr(0, 127),
                                            "ERROR: save_pci_digest: generating " + path + ".digest failed!"));
}

// The digests of both files are saved and nothing is to be found in the database, so that check_pci() gives 0 with 0
// unless a digest says otherwise.
class CheckFileDigest : public sandboxed_test {
protected:
    CheckFileDigest() { platform.run_commands(); }

    void SetUp() override {
        sandboxed_test::SetUp();
        write_file(first_input, "abc");
        write_file(second_input, "");
        write_file("/tmp/first.xml.digest", digest_of_abc + "\n");
        write_file("/tmp/second.xml.digest", digest_of_nothing + "\n");
        write_file(place::adapter_keys, words({0}));
    }

    // Checks the file at `path`, and the second one when that is the same as saved.
    int check(const std::string& path = first_input) { return check_pci(path.c_str(), second_input, &changed); }

    int changed = 77;
    recording_platform platform;
};

TEST_F(CheckFileDigest, GivesZeroAndLogsNothingForAnUnchangedFile) {
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
    EXPECT_THAT(platform.log, IsEmpty());
    EXPECT_THAT(platform.calls_of("popen"), ElementsAre("popen " + digest_command(first_input) + " for r",
                                                        "popen " + digest_command(second_input) + " for r"));
}

TEST_F(CheckFileDigest, AgreesWithWhatSavePciDigestWrote) {
    write_file(first_input, "other content\n");
    ASSERT_EQ(save_pci_digest(first_input, second_input), 0);
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(CheckFileDigest, GivesOneAndLogsBothDigestsForAChangedFile) {
    ASSERT_EQ(save_pci_digest(first_input, second_input), 0);
    write_file(first_input, "");
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_THAT(platform.log, ElementsAre("INFO: check_file_digest: /tmp/first.xml digest [" + digest_of_nothing +
                                          "] does not match saved value [" + digest_of_abc + "]"));
}

TEST_F(CheckFileDigest, FailsForAMissingFile) {
    EXPECT_EQ(check("/tmp/missing.xml"), -1);
    EXPECT_EQ(changed, 77);
    EXPECT_THAT(platform.calls, ElementsAre("ERROR: check_file_digest: /tmp/missing.xml does not exist"));
}

TEST_F(CheckFileDigest, FailsForANullPath) {
    EXPECT_EQ(check_pci(nullptr, second_input, &changed), -1);
    EXPECT_EQ(changed, 77);
    EXPECT_THAT(platform.calls, ElementsAre("ERROR: check_file_digest: (null) does not exist"));
}

TEST_F(CheckFileDigest, FailsWhenTheCommandCannotBeStarted) {
    platform.fail("popen");
    EXPECT_EQ(check(), -1);
    EXPECT_EQ(changed, 77);
    EXPECT_THAT(platform.log,
                ElementsAre("ERROR: check_file_digest: popen sha384sum /tmp/first.xml | awk '{ print $1 }' failed"));
}

TEST_F(CheckFileDigest, FailsWithoutASavedDigest) {
    std::filesystem::remove("/tmp/first.xml.digest");
    EXPECT_EQ(check(), -1);
    EXPECT_EQ(changed, 77);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: check_file_digest: open /tmp/first.xml.digest failed"));
}

TEST_F(CheckFileDigest, FailsForASavedDigestInAMissingFolder) {
    std::filesystem::remove("/tmp/first.xml.digest");
    make_folder_missing("/tmp/first.xml.digest");
    EXPECT_EQ(check(), -1);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: check_file_digest: open /tmp/first.xml.digest failed"));
}

TEST_F(CheckFileDigest, TakesADirectoryInTheDigestsPlaceForAnEmptyDigest) {
    std::filesystem::remove("/tmp/first.xml.digest");
    make_directory("/tmp/first.xml.digest");
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_THAT(platform.log, ElementsAre("INFO: check_file_digest: /tmp/first.xml digest [" + digest_of_abc +
                                          "] does not match saved value []"));
}

TEST_F(CheckFileDigest, LosesTheLastDigitOfASavedDigestWithoutALineEnd) {
    write_file("/tmp/first.xml.digest", digest_of_abc);
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_THAT(platform.log, ElementsAre("INFO: check_file_digest: /tmp/first.xml digest [" + digest_of_abc +
                                          "] does not match saved value [" + digest_of_abc.substr(0, 95) + "]"));
}

TEST_F(CheckFileDigest, TakesAnyLastCharacterForTheLineEnd) {
    write_file("/tmp/first.xml.digest", digest_of_abc + "x");
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
}

TEST_F(CheckFileDigest, TakesAnEmptySavedDigestForAChange) {
    write_file("/tmp/first.xml.digest", "");
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_THAT(platform.log, ElementsAre("INFO: check_file_digest: /tmp/first.xml digest [" + digest_of_abc +
                                          "] does not match saved value []"));
}

TEST_F(CheckFileDigest, ReadsOnlyTheFirstLine) {
    write_file("/tmp/first.xml.digest", digest_of_abc + "\nanything\n");
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 0);
}

TEST_F(CheckFileDigest, SeesADifferenceInTheLastDigit) {
    write_file("/tmp/first.xml.digest", digest_of_abc.substr(0, 95) + "8\n");
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
}

TEST_F(CheckFileDigest, SeesADifferenceInLength) {
    write_file("/tmp/first.xml.digest", digest_of_abc + "0\n");
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
}

TEST_F(CheckFileDigest, SeesADifferenceBehindAZeroByte) {
    write_file("/tmp/first.xml.digest", digest_of_abc + std::string(1, '\0') + "\n");
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_THAT(platform.log, ElementsAre("INFO: check_file_digest: /tmp/first.xml digest [" + digest_of_abc +
                                          "] does not match saved value [" + digest_of_abc + "]"));
}

TEST_F(CheckFileDigest, HasAnEmptyDigestOfWhatCannotBeHashed) {
    make_directory("/tmp/folder");
    write_file("/tmp/folder.digest", "saved\n");
    EXPECT_EQ(check("/tmp/folder"), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_THAT(platform.log,
                ElementsAre("INFO: check_file_digest: /tmp/folder digest [] does not match saved value [saved]"));
}

TEST_F(CheckFileDigest, FindsTwoEmptyDigestsEqual) {
    make_directory("/tmp/folder");
    write_file("/tmp/folder.digest", "\n");
    EXPECT_EQ(check("/tmp/folder"), 0);
    EXPECT_EQ(changed, 0);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(CheckFileDigest, TakesAPathOf96Characters) {
    const std::string path = path_of_length(96);
    write_file(path, "abc");
    write_file(path + ".digest", digest_of_abc + "\n");
    EXPECT_EQ(check(path), 0);
    EXPECT_EQ(changed, 0);
    EXPECT_EQ(platform.calls.front(), "popen " + digest_command(path) + " for r");
    EXPECT_EQ(digest_command(path).size(), 127u);
}

TEST_F(CheckFileDigest, HasAnEmptyDigestOfAPathOf97CharactersBecauseTheCommandIsCut) {
    const std::string path = path_of_length(97);
    write_file(path, "abc");
    write_file(path + ".digest", digest_of_abc + "\n");
    EXPECT_EQ(check(path), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(platform.calls.front(), "popen " + digest_command(path).substr(0, 127) + " for r");
    EXPECT_THAT(platform.log, ElementsAre("INFO: check_file_digest: " + path +
                                          " digest [] does not match saved value [" + digest_of_abc + "]"));
}

TEST_F(CheckFileDigest, NamesTheCutCommandThatCannotBeStarted) {
    const std::string path = path_of_length(97);
    write_file(path, "abc");
    platform.fail("popen");
    EXPECT_EQ(check(path), -1);
    EXPECT_THAT(platform.log,
                ElementsAre("ERROR: check_file_digest: popen " + digest_command(path).substr(0, 127) + " failed"));
}

TEST_F(CheckFileDigest, OpensTheWholeDigestPathOfAPathOf120Characters) {
    const std::string path = path_of_length(120);
    write_file(path, "abc");
    EXPECT_EQ(check(path), -1);
    EXPECT_THAT(platform.log, ElementsAre("ERROR: check_file_digest: open " + path + ".digest failed"));
}

TEST_F(CheckFileDigest, CutsTheDigestPathOfAPathOf121Characters) {
    const std::string path = path_of_length(121);
    write_file(path, "abc");
    write_file(path + ".digest", "not read\n");
    write_file(path + ".diges", "read\n");
    EXPECT_EQ(check(path), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_THAT(platform.log,
                ElementsAre("INFO: check_file_digest: " + path + " digest [] does not match saved value [read]"));
}
