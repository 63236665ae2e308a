// SPDX-License-Identifier: Apache-2.0

#include "console/wrapping.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST(Wrapping, BreaksAtBlanks) {
    EXPECT_THAT(wrapped("one two three", 7), ElementsAre("one two", "three"));
    EXPECT_THAT(wrapped("one two three", 6), ElementsAre("one", "two", "three"));
    EXPECT_THAT(wrapped("one   two", 4), ElementsAre("one", "two"));
}

TEST(Wrapping, BreaksAWordThatIsLongerThanALine) {
    EXPECT_THAT(wrapped("abcdefgh ij", 3), ElementsAre("abc", "def", "gh", "ij"));
}

TEST(Wrapping, CountsCharactersAndNotBytes) {
    EXPECT_THAT(wrapped("\u00e9\u00e9\u00e9 \u00e9", 3), ElementsAre("\u00e9\u00e9\u00e9", "\u00e9"));
}

TEST(Wrapping, LeavesAShortTextAlone) {
    EXPECT_THAT(wrapped("one", 3), ElementsAre("one"));
    EXPECT_THAT(wrapped("", 3), ElementsAre(""));
}

TEST(Wrapping, KeepsTheBlanksInFront) {
    EXPECT_THAT(wrapped("  one two", 6), ElementsAre("  one", "two"));
}

TEST(FittedLines, AreBrokenAtBlanksAndGoOnIndented) {
    EXPECT_EQ(fitted_lines("  one two three\nfour\n", 12), "  one two\n      three\nfour\n");
    EXPECT_EQ(fitted_lines("one two three\n", 13), "one two three\n");
}

TEST(FittedLines, AreLeftAloneWhereThereIsNoWidth) {
    EXPECT_EQ(fitted_lines("one two three\n", 0), "one two three\n");
}

TEST(FittedLines, HoldWordsThatNoLineHasRoomForWhereTheyStand) {
    EXPECT_EQ(fitted_lines("at /component/component one\n", 12), "at /component/component\n    one\n");
}

TEST(FittedLines, KeepSeveralBlanksTogether) {
    EXPECT_EQ(fitted_lines("one  two three  four\n", 15), "one  two\n    three  four\n");
}

TEST(FittedLines, CountCharactersWithoutControlSequences) {
    EXPECT_EQ(fitted_lines("\033[1m\u00e9\u00e9\u00e9 two\033[0m\n", 7), "\033[1m\u00e9\u00e9\u00e9 two\033[0m\n");
}
