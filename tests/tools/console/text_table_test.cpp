// SPDX-License-Identifier: Apache-2.0

#include "console/text_table.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <clocale>
#include <string>

#include "support/captured_stderr.h"
#include "support/pseudo_terminal.h"

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

TEST(TextTable, AlignsLongerCellsWhereALineIsLonger) {
    const std::string aligned(110, 'a');
    EXPECT_EQ(table_text({{"A", left, false, {"1", aligned}}, {"B", left, false, {"2", "3"}}}, of_width(130)),
              "A" + std::string(111, ' ') + "B\n1" + std::string(111, ' ') + "2\n" + aligned + "  3\n");
}

TEST(TextTable, LeavesLinesThatFitAsTheyAre) {
    EXPECT_EQ(table_text({{"A", left, true, {"aaaaaaaaaa"}}, {"B", right, false, {"1"}}}, of_width(13)),
              "A           B\n"
              "aaaaaaaaaa  1\n");
}

TEST(TextTable, LeavesLongCellsAsTheyAreWhereALineMayHaveAnyLength) {
    const std::string cell(101, 'a');
    EXPECT_EQ(table_text({{"A", left, true, {cell}}}, {}), "A\n" + cell + "\n");
}

TEST(TextTable, LeavesCellsThatMayNotWrapAsTheyAre) {
    EXPECT_EQ(table_text({{"A", right, false, {"1 ", "22"}}}, of_width(10)), " A\n1\n22\n");
}

TEST(TextTable, WrapsTheFirstOfTheWidestColumns) {
    EXPECT_EQ(table_text({{"A", left, true, {"aaaaaaaaaa"}}, {"B", left, true, {"bbbbbbbbbb"}}}, of_width(21)),
              "A          B\n"
              "aaaaaaaaa  bbbbbbbbbb\n"
              "a\n");
}

TEST(TextTable, MakesNoColumnNarrowerThanEightCharacters) {
    const std::vector<text_column> columns = {{"A", left, true, {"aaaaaaaaaaaa"}}, {"B", right, false, {"1"}}};
    EXPECT_EQ(table_text(columns, of_width(11)),
              "A         B\n"
              "aaaaaaaa  1\n"
              "aaaa\n");
    EXPECT_EQ(table_text(columns, of_width(10)),
              "A\n"
              "  aaaaaaaa\n"
              "  aaaa\n"
              "B\n"
              "  1\n");
}

TEST(TextTable, MakesNoColumnNarrowerThanItsHeading) {
    const std::vector<text_column> columns = {{"A long one", left, true, {"aaaaaaaaaaaa"}}, {"B", right, false, {"1"}}};
    EXPECT_EQ(table_text(columns, of_width(13)),
              "A long one  B\n"
              "aaaaaaaaaa  1\n"
              "aa\n");
    EXPECT_EQ(table_text(columns, of_width(12)),
              "A long one\n"
              "  aaaaaaaaaa\n"
              "  aa\n"
              "B\n"
              "  1\n");
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

TEST(TextTable, HasCellsBesideTheirHeadingsInBlocksWhereEightCharactersFit) {
    const std::vector<text_column> columns = {{"A", left, false, {"aaaaaaaabbb"}}, {"B", right, false, {"1"}}};
    EXPECT_EQ(table_text(columns, of_width(11)),
              "A  aaaaaaaa\n"
              "   bbb\n"
              "B  1\n");
    EXPECT_EQ(table_text(columns, of_width(10)),
              "A\n"
              "  aaaaaaaa\n"
              "  bbb\n"
              "B\n"
              "  1\n");
}

TEST(TextTable, HasOneCharacterALineWhereThereIsNoRoomForMore) {
    const std::vector<text_column> columns = {{"A", left, false, {"ab"}}, {"B", right, false, {"1"}}};
    for (std::size_t width = 1; width <= 3; ++width) {
        EXPECT_EQ(table_text(columns, of_width(width)), "A\n  a\n  b\nB\n  1\n") << width;
    }
    EXPECT_EQ(table_text(columns, of_width(4)), "A\n  ab\nB\n  1\n");
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

TEST(HeadingText, IsBoldWhereControlSequencesAreUnderstood) {
    text_style style;
    EXPECT_EQ(heading_text("Memory", style), "Memory");
    style.has_control_sequences = true;
    EXPECT_EQ(heading_text("Memory", style), "\033[1mMemory\033[0m");
}

class OutputStyle : public testing::Test {
protected:
    static text_style on_terminal(const char* variable = "LINES", const char* value = "24") {
        const captured_stderr standard_error;
        const pseudo_terminal terminal(STDOUT_FILENO, 97);
        setenv(variable, value, 1);
        const text_style style = output_style();
        unsetenv(variable);
        return style;
    }

    static text_style with_locale(const char* name) {
        EXPECT_NE(std::setlocale(LC_CTYPE, name), nullptr);
        const text_style style = on_terminal();
        std::setlocale(LC_CTYPE, "C");
        return style;
    }
};

TEST_F(OutputStyle, IsThatOfTheTerminal) {
    EXPECT_EQ(on_terminal().width, 97u);
    EXPECT_TRUE(on_terminal().has_control_sequences);
}

TEST_F(OutputStyle, IsPlainWhereNoColorIsWanted) {
    EXPECT_FALSE(on_terminal("NO_COLOR", "1").has_control_sequences);
}

TEST_F(OutputStyle, HasMoreThanAsciiWhereTheTerminalHas) {
    EXPECT_TRUE(with_locale("C.UTF-8").utf8);
    EXPECT_FALSE(with_locale("C").utf8);
}

TEST_F(OutputStyle, HasTheWidthOfTheEnvironment) {
    EXPECT_EQ(on_terminal("COLUMNS", "109").width, 109u);
    EXPECT_EQ(on_terminal("COLUMNS", "1").width, 1u);
}

TEST_F(OutputStyle, HasTheWidthOfTheTerminalWhereTheEnvironmentHasNone) {
    for (const char* columns : {"", "0", "12x", "x", "-5"}) {
        EXPECT_EQ(on_terminal("COLUMNS", columns).width, 97u) << columns;
    }
}

TEST_F(OutputStyle, IsPlainAsciiOfAnyWidthInAFile) {
    const pseudo_terminal standard_error(STDERR_FILENO, 97);
    const int usual = dup(STDOUT_FILENO);
    const int file = open("/dev/null", O_WRONLY);
    dup2(file, STDOUT_FILENO);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    const text_style style = output_style();
    std::setlocale(LC_CTYPE, "C");
    dup2(usual, STDOUT_FILENO);
    close(usual);
    close(file);
    EXPECT_FALSE(style.utf8);
    EXPECT_FALSE(style.has_control_sequences);
    EXPECT_EQ(style.width, 0u);
}
