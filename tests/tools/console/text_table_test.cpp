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

TEST(TextTable, EndsLinesWithoutBlanks) {
    EXPECT_EQ(table_text({{"A", left, false, {"1"}}, {"B", left, false, {""}}}, {}), "A  B\n1\n");
}

TEST(TextTable, HasABoldHeadingWhereControlSequencesAreUnderstood) {
    text_style style;
    style.has_control_sequences = true;
    EXPECT_EQ(table_text({{"A", left, false, {"1"}}}, style), "\033[1mA\033[0m\n1\n");
}

TEST(TextTable, WrapsTheWidestColumnThatMayWrapUntilTheLineFits) {
    EXPECT_EQ(table_text({{"A", left, true, {"aaaaaaaa aaaaaaaaaaa"}},
                          {"B", left, true, {"bbbbbbbbbb"}},
                          {"C", left, false, {"cccccccccccccccccccc"}}},
                         of_width(46)),
              "A             B           C\n"
              "aaaaaaaa      bbbbbbbbbb  cccccccccccccccccccc\n"
              "aaaaaaaaaaa\n");
}

TEST(TextTable, WrapsWordsThatAreTooLongWithinThemselves) {
    EXPECT_EQ(table_text({{"A", left, true, {"aaaaaaaaaaaa"}}, {"B", right, false, {"1"}}}, of_width(13)),
              "A           B\n"
              "aaaaaaaaaa  1\n"
              "aa\n");
}

TEST(TextTable, BecomesBlocksWhereALineCannotBeMadeToFit) {
    EXPECT_EQ(table_text({{"Id", right, false, {"1", "2"}},
                          {"Locator", left, true, {"a long locator", ""}},
                          {"Serial", left, false, {"12345678", ""}}},
                         of_width(17)),
              "Id       1\n"
              "Locator  a long\n"
              "         locator\n"
              "Serial   12345678\n"
              "\n"
              "Id       2\n"
              "Locator\n"
              "Serial\n");
}

TEST(TextTable, LosesNothingAtAnyWidth) {
    const std::vector<text_column> columns = {{"Heading", left, false, {"abcdefghij"}},
                                              {"Other", left, true, {"klmno pqrst"}}};
    for (std::size_t width = 1; width < 40; ++width) {
        std::string shown = table_text(columns, of_width(width));
        std::string letters;
        for (const char character : shown) {
            letters += character >= 'a' && character <= 'z' ? std::string(1, character) : "";
        }
        for (const char letter : std::string("abcdefghijklmnopqrst")) {
            EXPECT_NE(letters.find(letter), std::string::npos) << width << ' ' << letter;
        }
    }
}
