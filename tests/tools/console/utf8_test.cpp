// SPDX-License-Identifier: Apache-2.0

#include "console/utf8.h"

#include <gtest/gtest.h>

TEST(RepairedUtf8, OfUtf8IsTheText) {
    const std::string text = "a\u00e9\u20ac\U0001F600\uFFFD";
    EXPECT_EQ(repaired_utf8(text), text);
}

TEST(RepairedUtf8, OfTheFirstAndTheLastCharacterOfEachLengthIsTheText) {
    const std::string text = "\x7F\xC2\x80\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U00040000\U0010FFFF";
    EXPECT_EQ(repaired_utf8(text), text);
}

TEST(RepairedUtf8, OfAZeroIsTheText) {
    const std::string text("a\0b", 3);
    EXPECT_EQ(repaired_utf8(text), text);
}

TEST(RepairedUtf8, HasNoCharactersOfFiveBytes) {
    EXPECT_EQ(repaired_utf8("\xF8\x88\x80\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(RepairedUtf8, HasAReplacementCharacterForEveryStrayByte) {
    EXPECT_EQ(repaired_utf8("a\xFF\x80z"), "a\uFFFD\uFFFDz");
}

TEST(RepairedUtf8, ReplacesACharacterThatIsCutOff) {
    EXPECT_EQ(repaired_utf8("a\xC3"), "a\uFFFD");
    EXPECT_EQ(repaired_utf8("a\xE2\x82z"), "a\uFFFD\uFFFDz");
}

TEST(RepairedUtf8, ReplacesACharacterThatIsWrittenLongerThanItHasToBe) {
    EXPECT_EQ(repaired_utf8("\xC1\xBF"), "\uFFFD\uFFFD");
    EXPECT_EQ(repaired_utf8("\xE0\x9F\xBF"), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(repaired_utf8("\xF0\x8F\xBF\xBF"), "\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(RepairedUtf8, ReplacesNumbersThatAreNoCharacters) {
    EXPECT_EQ(repaired_utf8("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(repaired_utf8("\xED\xBF\xBF"), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(repaired_utf8("\xF4\x90\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(Printable, WritesControlCharactersAsEscapes) {
    EXPECT_EQ(printable("a\tb\nc\rd\x1b[2J\x7F"), "a\\tb\\nc\\rd\\x1b[2J\\x7f");
    EXPECT_EQ(printable(std::string("\0\x1f", 2)), "\\x00\\x1f");
}

TEST(Printable, WritesTheControlCharactersOfTheUpperHalfAsEscapes) {
    EXPECT_EQ(printable("a\u0080b\u009bc\u009fd"), "a\\x80b\\x9bc\\x9fd");
}

TEST(Printable, WritesWhatTurnsTheDirectionOfWritingAsEscapes) {
    EXPECT_EQ(printable("a\u202ab\u202ec\u2066d\u2069e"), "a\\u202ab\\u202ec\\u2066d\\u2069e");
    EXPECT_EQ(printable("\u202c\u2067"), "\\u202c\\u2067");
    EXPECT_EQ(printable("\u2029\u202f\u2065\u206a"), "\u2029\u202f\u2065\u206a");
}

TEST(Printable, LeavesEverythingElse) {
    EXPECT_EQ(printable("a \u00a0\u00e9\u2028'\"\\"), "a \u00a0\u00e9\u2028'\"\\");
}

TEST(Printable, HasAReplacementCharacterForEveryStrayByte) {
    EXPECT_EQ(printable("a\xFF\x80\tz\xC3"), "a\uFFFD\uFFFD\\tz\uFFFD");
}

TEST(LengthOf, CountsCharactersAndNotBytes) {
    EXPECT_EQ(length_of(""), 0u);
    EXPECT_EQ(length_of("abc"), 3u);
    EXPECT_EQ(length_of("\u00e9\u20ac\U0001F600"), 3u);
}

TEST(FirstCharacters, CutsBetweenCharacters) {
    EXPECT_EQ(first_characters("\u00e9\u20acx", 2), "\u00e9\u20ac");
    EXPECT_EQ(first_characters("\u00e9\u20acx", 0), "");
    EXPECT_EQ(first_characters("\u00e9\u20acx", 9), "\u00e9\u20acx");
}

TEST(FirstCharacters, TakesAStrayByteForACharacter) {
    EXPECT_EQ(first_characters("a\xFFz", 2), "a\xFF");
}

TEST(PrintableLines, AreThoseOfTheText) {
    EXPECT_EQ(printable_lines("a\x1b\n\nb\r\n"), "a\\x1b\n\nb\\r\n");
    EXPECT_EQ(printable_lines(""), "");
}

TEST(PrintableLines, AllEnd) {
    EXPECT_EQ(printable_lines("a\nbc"), "a\nbc\n");
}

TEST(HarmlessJson, EscapesWhatJsonLeaves) {
    EXPECT_EQ(harmless_json("\"\u202e\u009b\x7f\u00e9\u2069\""), "\"\\u202e\\u009b\\u007f\u00e9\\u2069\"");
}

TEST(HarmlessJson, KeepsItsLines) {
    EXPECT_EQ(harmless_json("{\n  \"a\": 1\n}"), "{\n  \"a\": 1\n}");
}

TEST(HarmlessJson, LeavesWhatJsonEscapesOrRefuses) {
    EXPECT_EQ(harmless_json("\x1f\n\xff\xc3"), "\x1f\n\xff\xc3");
}
