// SPDX-License-Identifier: Apache-2.0

#include "console/text_table.h"

#include <gtest/gtest.h>

namespace {

constexpr auto left = alignment::left;
constexpr auto right = alignment::right;

text_style of_width(std::size_t width, bool utf8 = false) {
    text_style style;
    style.width = width;
    style.utf8 = utf8;
    return style;
}

}  // namespace

TEST(TextTable, AlignsCellsUnderTheirHeadings) {
    EXPECT_EQ(table_text({{"Name", left, false, {"a", "longer"}}, {"Size", right, false, {"1", "22222"}}}, {}),
              "Name     Size\n"
              "a           1\n"
              "longer  22222\n");
}

TEST(TextTable, CountsCharactersAndNotBytes) {
    EXPECT_EQ(table_text({{"A", left, false, {"\u00e9\u00e9", "x"}}, {"B", left, false, {"1", "2"}}}, {}),
              "A   B\n"
              "\u00e9\u00e9  1\n"
              "x   2\n");
}

TEST(TextTable, AlignsCellsOfAHundredCharactersAndLetsLongerOnesStandOut) {
    const std::string aligned(100, 'a');
    const std::string longer(101, 'b');
    EXPECT_EQ(
        table_text({{"A", left, false, {"1", aligned, longer}}, {"B", left, false, {"2", "3", "4"}}}, {}),
        "A" + std::string(101, ' ') + "B\n1" + std::string(101, ' ') + "2\n" + aligned + "  3\n" + longer + "  4\n");
}

TEST(TextTable, CutsNoColumnThatMayNotShrink) {
    const std::string longer(101, 'b');
    EXPECT_EQ(table_text({{"A", left, false, {longer}}}, of_width(50)), "A\n" + longer + '\n');
}

TEST(TextTable, EndsLinesWithoutBlanks) {
    EXPECT_EQ(table_text({{"A", left, false, {"1"}}, {"B", left, false, {""}}}, {}), "A  B\n1\n");
}

TEST(TextTable, HasABoldHeadingWhereControlSequencesAreUnderstood) {
    text_style style;
    style.has_control_sequences = true;
    EXPECT_EQ(table_text({{"A", left, false, {"1"}}}, style), "\033[1mA\033[0m\n1\n");
}

TEST(TextTable, CutsTheWidestColumnThatMayShrinkUntilTheLineFits) {
    EXPECT_EQ(table_text({{"A", left, true, {"aaaaaaaaaaaaaaaaaaaa"}},
                          {"B", left, true, {"bbbbbbbbbb"}},
                          {"C", left, false, {"cccccccccccccccccccc"}}},
                         of_width(46)),
              "A             B           C\n"
              "aaaaaaaaaaa~  bbbbbbbbbb  cccccccccccccccccccc\n");
}

TEST(TextTable, CutsEquallyWideColumnsInTurn) {
    EXPECT_EQ(table_text({{"A", left, true, {"aaaaaaaaaaaa"}}, {"B", left, true, {"bbbbbbbbbbbb"}}}, of_width(22)),
              "A           B\n"
              "aaaaaaaaa~  bbbbbbbbb~\n");
}

TEST(TextTable, CutsNoColumnBelowEightCharacters) {
    EXPECT_EQ(table_text({{"A", left, true, {"aaaaaaaaaaaa"}}, {"B", left, true, {"bbbbbbbb"}}}, of_width(5)),
              "A         B\n"
              "aaaaaaa~  bbbbbbbb\n");
}

TEST(CutText, OfAShortTextIsTheText) {
    EXPECT_EQ(cut_text("\u00e9\u00e9\u00e9", 3, {}), "\u00e9\u00e9\u00e9");
}

TEST(CutText, MarksWhereSomethingWasCutOff) {
    EXPECT_EQ(cut_text("abcd", 3, {}), "ab~");
    EXPECT_EQ(cut_text("abcd", 3, of_width(0, true)), "ab\u2026");
}
