// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "support/quoted.h"
#include "tools/subcommands/command_test.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

const std::string sample_server = quoted(SAMPLES_DIR "/two-socket-server.xml");
const std::string at = " --at 2026-11-19T10:00:00Z";

}  // namespace

class Report : public command_test {};

TEST_F(Report, OfACdsFileIsAPage) {
    const command_result result = run("zebdb-cds report " + sample_server + at);
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, StartsWith("<!DOCTYPE html>\n"));
    EXPECT_THAT(result.out, EndsWith("</html>\n"));
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(Report, OfADatabaseSaysThatWhatWasLeftOutIsNotKnown) {
    const command_result result =
        run("zebdb-cds load -q " + sample_server + " 2>log >out && zebdb-cds report inventory.db" + at);
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("64 parts recorded; what was left out is not known"));
    EXPECT_THAT(result.out, HasSubstr("<dt>Loaded from</dt><dd><span class=\"value\">" SAMPLES_DIR
                                      "/two-socket-server.xml</span>, "));
}

TEST_F(Report, OfStandardInputIsTheSameButForTheName) {
    EXPECT_EQ(run("zebdb-cds report - <" + sample_server + at +
                  " | sed 's/standard input/NAME/g; s/\"name\":\"-\"/NAME/' | wc -l")
                  .out,
              run("zebdb-cds report " + sample_server + at + " | wc -l").out);
}

TEST_F(Report, AgainstAnOlderInventoryTellsTheChanges) {
    const command_result result = run("sed 's/Gold 6248/Gold 6252/' " + sample_server +
                                      " >new.xml && zebdb-cds report new.xml --against " + sample_server + at);
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("13 left out, 2 changes since "));
}

TEST_F(Report, HasTheTimeThatIsGiven) {
    EXPECT_THAT(run("zebdb-cds report " + sample_server + at).out, HasSubstr("2026-11-19 10:00:00 UTC"));
}

TEST_F(Report, RefusesWhatIsNoTime) {
    const command_result result = run("zebdb-cds report " + sample_server + " --at yesterday");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zebdb-cds: --at 'yesterday' is no time, as 2026-11-19T10:00:00Z is\n");
}

TEST_F(Report, RefusesTwoInventoriesOfStandardInput) {
    const command_result result = run("zebdb-cds report - --against - <" + sample_server);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.err, "zebdb-cds: only one of the two inventories can be standard input\n");
}

TEST_F(Report, OfAVeryLongTextSaysWhoWillNotTakeIt) {
    ASSERT_EQ(run("zebdb-cds load " + sample_server).status, 0);
    execute("inventory.db", "UPDATE Memory SET PartNo = hex(zeroblob(3700000)) WHERE Id = 1");
    const command_result result = run("zebdb-cds report inventory.db" + at + " >page.html");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(
        result.err,
        "zebdb-cds: the page has " + std::to_string(std::filesystem::file_size(folder() / "page.html") / 1000000) +
            " MB, which browsers open slowly and mail servers may refuse; a file of fewer servers makes a smaller "
            "one\n");
}

TEST_F(Report, RefusesWhatIsNoInventory) {
    const command_result result = run("zebdb-cds report " + quoted(SAMPLES_DIR "/errors/truncated.xml"));
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(result.err, HasSubstr("line 7"));
}
