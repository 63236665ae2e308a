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
