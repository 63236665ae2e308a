// SPDX-License-Identifier: Apache-2.0

#include "soak/write_history.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace {

using outcome = write_history::outcome;

moment at(int second) {
    return moment(std::chrono::seconds(second));
}

class WriteHistory : public testing::Test {
protected:
    // A write of that revision from one second to another.
    void write(int revision, int start, int end, outcome result) {
        history.begin(revision, at(start));
        history.end(revision, at(end), result);
    }
    std::string objection(int revision, int start, int end) { return history.objection(revision, at(start), at(end)); }

    write_history history;
};

}  // namespace

TEST_F(WriteHistory, LetsAReaderFindTheLastWrite) {
    write(1, 1, 2, outcome::committed);
    write(2, 3, 4, outcome::committed);
    EXPECT_EQ(objection(2, 5, 6), "");
}

TEST_F(WriteHistory, LetsNoReaderFindWhatWasReplacedBeforeHeBegan) {
    write(1, 1, 2, outcome::committed);
    write(2, 3, 4, outcome::committed);
    EXPECT_EQ(objection(1, 5, 6), "it was replaced by revision 2 before");
}

TEST_F(WriteHistory, LetsAReaderFindWhatIsReplacedWhileHeReads) {
    write(1, 1, 2, outcome::committed);
    write(2, 3, 4, outcome::committed);
    EXPECT_EQ(objection(1, 3, 6), "");
}

TEST_F(WriteHistory, DoesNotTellWhichOfTwoWritesAtATimeIsTheLater) {
    write(1, 1, 4, outcome::committed);
    write(2, 2, 3, outcome::committed);
    EXPECT_EQ(objection(1, 5, 6), "");
    EXPECT_EQ(objection(2, 5, 6), "");
}

TEST_F(WriteHistory, LetsAReaderFindAWriteThatIsUnderWay) {
    history.begin(1, at(1));
    EXPECT_EQ(objection(1, 2, 3), "");
}

TEST_F(WriteHistory, LetsAReaderFindWhatWasThereBeforeAKilledWrite) {
    write(1, 1, 2, outcome::committed);
    write(2, 3, 4, outcome::unknown);
    EXPECT_EQ(objection(1, 5, 6), "");
    EXPECT_EQ(objection(2, 7, 8), "");
}

TEST_F(WriteHistory, LetsNoReaderFindAKilledWriteThatWasReplaced) {
    write(1, 1, 2, outcome::unknown);
    write(2, 3, 4, outcome::committed);
    EXPECT_EQ(objection(1, 5, 6), "it was replaced by revision 2 before");
}

TEST_F(WriteHistory, TakesAKilledWriteThatWasFoundForCommitted) {
    write(1, 1, 2, outcome::committed);
    write(2, 3, 4, outcome::unknown);
    EXPECT_EQ(objection(2, 5, 6), "");
    EXPECT_EQ(objection(1, 7, 8), "it was replaced by revision 2 before");
}

TEST_F(WriteHistory, TakesAWriteThatWasFoundBeforeItWasKilledForCommitted) {
    history.begin(1, at(1));
    EXPECT_EQ(objection(1, 2, 3), "");
    EXPECT_TRUE(history.end(1, at(4), outcome::unknown));
    EXPECT_TRUE(history.has_committed());
}

TEST_F(WriteHistory, LetsNoReaderFindARefusedWriteOrOneThatIsStillToBegin) {
    write(1, 1, 2, outcome::refused);
    write(2, 7, 8, outcome::committed);
    EXPECT_EQ(objection(1, 3, 4), "its write was refused");
    EXPECT_EQ(objection(2, 3, 4), "nobody had begun to write it");
    EXPECT_EQ(objection(3, 3, 4), "nobody had begun to write it");
}

TEST_F(WriteHistory, RefusesNoWriteThatWasFound) {
    history.begin(1, at(1));
    EXPECT_EQ(objection(1, 2, 3), "");
    EXPECT_FALSE(history.end(1, at(4), outcome::refused));
}
