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

TEST(Wrapping, BreaksALongWordBehindBlanksWithinItself) {
    EXPECT_THAT(wrapped("  abcdef", 4), ElementsAre("  ab", "cdef"));
}

TEST(Wrapping, DropsTheBlanksBehind) {
    EXPECT_THAT(wrapped("one  ", 10), ElementsAre("one"));
    EXPECT_THAT(wrapped("one  ", 3), ElementsAre("one"));
    EXPECT_THAT(wrapped("   ", 2), ElementsAre(""));
}

TEST(FittedLines, AreBrokenAtBlanksAndGoOnIndented) {
    EXPECT_EQ(fitted_lines("  one two three\nfour\n", 12), "  one two\n      three\nfour\n");
    EXPECT_EQ(fitted_lines("one two three\n", 13), "one two three\n");
}

TEST(FittedLines, AreFilledWhereverTheyBegin) {
    EXPECT_EQ(fitted_lines("aa bb cc dd ee ff gg hh\n", 11), "aa bb cc dd\n    ee ff\n    gg hh\n");
}

TEST(FittedLines, AreBrokenBeforeAWordThatIsOneCharacterTooLong) {
    EXPECT_EQ(fitted_lines("one two three\n", 12), "one two\n    three\n");
}

TEST(FittedLines, AreBrokenBeforeAWordThatJustFitsBelow) {
    EXPECT_EQ(fitted_lines("one two three\n", 9), "one two\n    three\n");
    EXPECT_EQ(fitted_lines("one two three\n", 8), "one two three\n");
}

TEST(FittedLines, AreNotBrokenBeforeAWordThatJustFits) {
    EXPECT_EQ(fitted_lines("one two three\n", 7), "one two three\n");
}

TEST(FittedLines, OfBlanksStayAsTheyAre) {
    EXPECT_EQ(fitted_lines("     \none  \n", 3), "     \none  \n");
}

TEST(FittedLines, AllEnd) {
    EXPECT_EQ(fitted_lines("one\ntwo", 3), "one\ntwo\n");
    EXPECT_EQ(fitted_lines("a", 1), "a\n");
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

TEST(FittedLines, CountWhatStandsBehindControlSequences) {
    EXPECT_EQ(fitted_lines("\033[1mone\033[0m two three\n", 12), "\033[1mone\033[0m two\n    three\n");
}
