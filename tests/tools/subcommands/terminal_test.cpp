// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include "support/cds_text.h"
#include "tools/subcommands/command_test.h"

using testing::AnyOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr const char* erase_line = "\r\033[K";

const std::string wide_processor = cds_file(
    cds_component("cpu_info", {text("Socket Designation", "CPU 1"), text("Processor Version", std::string(60, 'v')),
                               text("Serial Number", std::string(40, 's'))}));

bool is_first_byte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

// In characters; not in bytes, which are more where something was cut off.
std::size_t longest_row(const std::string& text) {
    std::size_t longest = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.find('\033') == std::string::npos) {
            longest =
                std::max(longest, static_cast<std::size_t>(std::count_if(line.begin(), line.end(), is_first_byte)));
        }
    }
    return longest;
}

}  // namespace

class Terminal : public command_test {
protected:
    Terminal() { write("processor.xml", wide_processor); }

    // What reaches a terminal of 120 columns on which the commands run.
    std::string on_terminal(const std::string& shell_commands) {
        write("commands", "stty cols 120 -onlcr\n" + shell_commands + "\n");
        const command_result result = run("script --quiet --return --command 'sh ./commands' /dev/null");
        EXPECT_EQ(result.status, 0);
        return result.out;
    }

    std::string show_on_terminal(const std::string& environment = "") {
        return on_terminal("zebdb-cds load processor.xml >/dev/null 2>&1 && " + environment +
                           " zebdb-cds show processors");
    }

    // Of twenty thousand functions, some seven megabytes, whose progress is shown; three times as many are read and
    // stored in more than one look at it.
    void write_large_file(int functions = 20'000) const { write("large.xml", cds_file(cds_functions(functions, 10))); }
};

TEST_F(Terminal, SeesHowMuchOfALargeFileIsReadAndThatItsRowsAreStored) {
    write_large_file(60'000);
    const std::string shown = on_terminal("zebdb-cds load large.xml");
    EXPECT_THAT(shown, ContainsRegex("\r\033\\[Kreading 2[0-9] MiB: [0-9]+ %"));
    EXPECT_THAT(shown, HasSubstr(erase_line + std::string("storing rows ...")));
}

TEST_F(Terminal, SeesTheSameOfALargeFileOnStandardInput) {
    write_large_file(60'000);
    const std::string shown = on_terminal("zebdb-cds load - <large.xml");
    EXPECT_THAT(shown, ContainsRegex("reading 2[0-9] MiB: [1-9][0-9]* %"));
    EXPECT_THAT(shown, HasSubstr("storing rows ..."));
}

TEST_F(Terminal, SeesNothingOfTheProgressAfterwards) {
    write_large_file();
    std::istringstream lines(on_terminal("zebdb-cds load large.xml"));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t erased = line.rfind(erase_line);
        const std::string left = erased == std::string::npos ? line : line.substr(erased + 4);
        ASSERT_THAT(left, AnyOf(StartsWith("Loaded 'large.xml'"), StartsWith("  ")));
    }
}

TEST_F(Terminal, SeesNoProgressOfASmallFile) {
    EXPECT_THAT(on_terminal("zebdb-cds load processor.xml"), Not(HasSubstr(erase_line)));
}

TEST_F(Terminal, SeesNoProgressWhenItUnderstandsNoControlSequences) {
    write_large_file();
    EXPECT_THAT(on_terminal("TERM=dumb zebdb-cds load large.xml"), Not(HasSubstr(erase_line)));
}

TEST_F(Terminal, IsSparedTheProgressWhenErrorsGoElsewhere) {
    write_large_file();
    EXPECT_THAT(on_terminal("zebdb-cds load large.xml 2>log"), StartsWith("Loaded 'large.xml'"));
    EXPECT_THAT(read("log"), Not(HasSubstr(erase_line)));
}

TEST_F(Terminal, GetsBoldHeadings) {
    const std::string shown = show_on_terminal();
    EXPECT_THAT(shown, StartsWith("\033[1mProcessors (1)\033[0m\n\033[1mId  Socket"));
}

TEST_F(Terminal, GetsLinesThatFitAndLoseNothing) {
    const std::string shown = show_on_terminal();
    EXPECT_LE(longest_row(shown), 120u);
    EXPECT_THAT(shown, HasSubstr(std::string(60, 'v')));
    EXPECT_THAT(shown, HasSubstr(std::string(40, 's')));
}

TEST_F(Terminal, GetsPlainLinesThatFitWithNoColor) {
    const std::string shown = show_on_terminal("NO_COLOR=1");
    EXPECT_THAT(shown, Not(HasSubstr("\033")));
    EXPECT_LE(longest_row(shown), 120u);
}

TEST_F(Terminal, GetsWarningsAndErrorsOfTheLogOnly) {
    write("server.xml", cds_file(cds_functions(1, 1)));
    EXPECT_THAT(on_terminal("zebdb-cds load server.xml"), Not(HasSubstr("INFO: ")));
    EXPECT_THAT(on_terminal("zebdb-cds load -v server.xml"), HasSubstr("INFO: "));
}

TEST_F(Terminal, GetsTheSameJsonAsAFile) {
    ASSERT_EQ(run("zebdb-cds load processor.xml").status, 0);
    EXPECT_EQ(on_terminal("zebdb-cds show --format json"), run("zebdb-cds show --format json").out);
}

TEST_F(Terminal, IsNotSteeredByCsvAndDumps) {
    write("steering.xml", cds_file(cds_component("cpu_info", {text("Socket Designation", "a\u202eb\u009bc"),
                                                              integer("Core Count", "1")})));
    const std::string shown = on_terminal(
        "zebdb-cds load steering.xml >/dev/null 2>&1; zebdb-cds dump steering.xml; "
        "zebdb-cds show processors --format csv");
    EXPECT_THAT(shown, HasSubstr("<text_value>a\\u202eb\\x9bc</text_value>\n"));
    EXPECT_THAT(shown, HasSubstr(",a\\u202eb\\x9bc,"));
    EXPECT_EQ(shown.find("\u202e"), std::string::npos);
}

TEST_F(Terminal, IsTheOnlyPlaceWhereCsvAndDumpsHaveEscapes) {
    write("steering.xml", cds_file(cds_component("cpu_info", {text("Socket Designation", "a\u202eb")})));
    const std::string printed = run("zebdb-cds load steering.xml >/dev/null; zebdb-cds dump steering.xml; zebdb-cds "
                                    "show processors --format csv")
                                    .out;
    EXPECT_THAT(printed, HasSubstr("<text_value>a\u202eb</text_value>\n"));
    EXPECT_THAT(printed, HasSubstr(",a\u202eb,"));
}
