// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <sstream>
#include <string>

#include <zebdb_cds_parser/version.h>

#include "support/quoted.h"
#include "support/small_server.h"
#include "tools/subcommands/command_test.h"

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::MatchesRegex;

class Usage : public command_test {};

TEST_F(Usage, HelpNamesEverySubcommand) {
    const command_result result = run("zebdb-cds --help");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("\n  load  "));
    EXPECT_THAT(result.out, HasSubstr("\n  show  "));
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(Usage, HelpOfASubcommandNamesItsArguments) {
    const command_result result = run("zebdb-cds load --help");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("Usage: zebdb-cds load [OPTIONS] FILE\n"));
    // The default value is written as the version of CLI11 has it.
    EXPECT_THAT(result.out,
                ContainsRegex("--database PATH(=inventory\\.db| \\[inventory\\.db\\] ) \\(Env:ZEBDB_DATABASE\\)"));
}

TEST_F(Usage, VersionIsOneLine) {
    const command_result result = run("zebdb-cds --version");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "zebdb-cds " ZEBDB_CDS_PARSER_VERSION_STRING "\n");
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(Usage, VersionHasAShortOption) {
    EXPECT_EQ(run("zebdb-cds -V").out, run("zebdb-cds --version").out);
}

TEST_F(Usage, HelpIsASubcommandToo) {
    EXPECT_EQ(run("zebdb-cds help").out, run("zebdb-cds --help").out);
    EXPECT_EQ(run("zebdb-cds help load").out, run("zebdb-cds load --help").out);
}

TEST_F(Usage, HelpOfEverySubcommandFitsIntoEightyColumnsAndHasTwoExamples) {
    const std::string names =
        run("zebdb-cds --help | sed -n '/^Subcommands:/I,/^$/s/^  \\([a-z][a-z-]*\\)  .*/\\1/p'").out;
    EXPECT_THAT(names, HasSubstr("load\n"));
    std::istringstream all("--help\n" + names);
    for (std::string name; std::getline(all, name);) {
        const std::string help = run("zebdb-cds " + (name == "--help" ? name : "help " + name)).out;
        std::istringstream lines(help);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 80u) << line;
        }
        if (name != "--help") {
            EXPECT_THAT(help, ContainsRegex("\nExamples:\n  zebdb-cds " + name + ".*\n  zebdb-cds " + name)) << name;
        }
    }
}

TEST_F(Usage, ExamplesOfTheHelpAreDone) {
    write("server.xml",
          cds_file(cds_component("pci_device_info", pci_function("3B", "0", "0", {integer("Location", "1")})) +
                   cds_component("pci_bridge_info",
                                 pci_function("0", "1C", "0", {hex("Vendor ID", "1A03"), hex("Device ID", "1150")}))));
    const command_result result = run(R"(
        HOME=$PWD; export HOME
        mkdir -p servers .zfunc .config/fish/completions
        for copy in one other old servers/server; do cp server.xml $copy.xml; done
        echo settings >settings.bin
        zebdb-cds save-digest server.xml settings.bin >shown
        for name in $(zebdb-cds --help | sed -n '/^Subcommands:/I,/^$/s/^  \([a-z][a-z-]*\)  .*/\1/p'); do
            zebdb-cds help $name | sed -n '/^Examples:/,$s/^  //p'
        done >examples
        while IFS= read -r example; do
            sh -c "$example" </dev/null >shown 2>errors || { echo "$example: $?"; tail -n 1 errors; }
        done <examples)");
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(read("examples"),
                AllOf(HasSubstr("zebdb-cds load server.xml\n"), HasSubstr("zebdb-cds completion zsh")));
    EXPECT_THAT(names(), IsSupersetOf({"observation.jsonl", "observations.jsonl", "server.db", "server.html", "try"}));
    EXPECT_EQ(read(".zfunc/_zebdb-cds"), run("zebdb-cds completion zsh").out);
    EXPECT_EQ(read(".config/fish/completions/zebdb-cds.fish"), run("zebdb-cds completion fish").out);
}

// But for blanks in a row and for how the version of CLI11 writes a default value.
TEST_F(Usage, HelpIsWhatItsPagesSay) {
    const command_result result = run(R"(
        zebdb-cds --help >help
        for name in $(sed -n '/^Subcommands:/I,/^$/s/^  \([a-z][a-z-]*\)  .*/\1/p' help); do
            printf '\n--- %s\n' $name
            zebdb-cds help $name
        done >>help
        sed -E -e '/^  -/s/ \[([^]]*)\] +/=\1 /' -e 's/([^ ])  +/\1 /' help)");
    EXPECT_EQ(result.out, run("cat " + quoted(SOURCE_DIR "/tests/tools/subcommands/help.txt")).out);
}

TEST_F(Usage, WithoutArgumentsPrintsTheHelpWhereErrorsGo) {
    const command_result result = run("zebdb-cds");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, run("zebdb-cds --help").out);
    EXPECT_THAT(result.out, IsEmpty());
}

TEST_F(Usage, HelpThatCannotBeWrittenFails) {
    const command_result result = run("zebdb-cds --help >/dev/full");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zebdb-cds: cannot write to standard output: No space left on device\n");
}

TEST_F(Usage, OfANumberThatIsNoneNamesItsOption) {
    const command_result result = run("zebdb-cds refresh a.xml --aim many");
    EXPECT_EQ(result.status, 2);
    // The range is written as the version of CLI11 has it.
    EXPECT_THAT(result.err, MatchesRegex("zebdb-cds: --aim: Value many not in range (0 to 4294967295|"
                                         "\\[0 - 4294967295\\]); see 'zebdb-cds refresh --help'\n"));
}

struct wrong_usage {
    const char* name;
    const char* arguments;
    const char* message;

    friend std::ostream& operator<<(std::ostream& out, const wrong_usage& usage) { return out << usage.arguments; }
};

class WrongUsage : public command_test, public testing::WithParamInterface<wrong_usage> {};

TEST_P(WrongUsage, SaysWhatIsWrongAndWhereHelpIs) {
    const command_result result = run(std::string("zebdb-cds ") + GetParam().arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, std::string("zebdb-cds: ") + GetParam().message + "\n");
    EXPECT_THAT(result.out, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Of, WrongUsage,
    testing::Values(
        wrong_usage{"AnUnknownSubcommand", "sho",
                    "there is no subcommand 'sho'; did you mean 'show'? See 'zebdb-cds --help'"},
        wrong_usage{"AnUnknownHelp", "help sho",
                    "there is no subcommand 'sho'; did you mean 'show'? See 'zebdb-cds --help'"},
        wrong_usage{"AnAbbreviatedOption", "show --form json",
                    "there is no option '--form'; write '--format' in full; see 'zebdb-cds show --help'"},
        wrong_usage{"AnAbbreviatedOptionWithItsValue", "show --form=json",
                    "there is no option '--form'; write '--format' in full; see 'zebdb-cds show --help'"},
        wrong_usage{"AMisspeltOption", "show --fromat json",
                    "there is no option '--fromat'; did you mean '--format'? See 'zebdb-cds show --help'"},
        wrong_usage{"AnOptionInFrontOfItsSubcommand", "--format json show",
                    "the option '--format' has to stand behind 'show'; see 'zebdb-cds show --help'"},
        wrong_usage{"AShortOptionInFrontOfItsSubcommand", "-q load a.xml",
                    "the option '-q' has to stand behind 'load'; see 'zebdb-cds load --help'"},
        wrong_usage{"AnUnknownShortOption", "load -x a.xml", "there is no option '-x'; see 'zebdb-cds load --help'"},
        wrong_usage{"AnUnknownShortOptionOfTheCommand", "-v", "there is no option '-v'; see 'zebdb-cds --help'"},
        wrong_usage{"AnUnknownColumn", "show --columns Colour",
                    "there is no column 'Colour'; 'zebdb-cds fields' lists them"},
        wrong_usage{"AColumnOfAnotherKind", "show memory --columns Socket",
                    "there is no column 'Socket' of memory; 'zebdb-cds fields memory' lists them"},
        wrong_usage{"AllComponentsAndOne", "explain a.xml --all --part A1",
                    "--all excludes --part; see 'zebdb-cds explain --help'"},
        wrong_usage{"AnEmptyPart", "tree --part ''", "--part: it is empty; see 'zebdb-cds tree --help'"},
        wrong_usage{"AnEmptySubcommand", "''", "there is no subcommand ''; see 'zebdb-cds --help'"},
        wrong_usage{"AnUnknownOption", "--frobnicate", "there is no option '--frobnicate'; see 'zebdb-cds --help'"},
        wrong_usage{"LoadWithoutAFile", "load", "FILE is required; see 'zebdb-cds load --help'"},
        wrong_usage{"LoadOfTwoFiles", "load a.xml b.xml",
                    "the word 'b.xml' is one too many; see 'zebdb-cds load --help'"},
        wrong_usage{"AnEmptyDatabasePath", "load a.xml --database ''",
                    "--database: the path is empty; see 'zebdb-cds load --help'"},
        wrong_usage{
            "AnUnknownKind", "show disks",
            "'disks' is neither a kind {processors,memory,bridges,devices} nor a file; see 'zebdb-cds show --help'"},
        wrong_usage{"AnEmptyKind", "show ''",
                    "'' is neither a kind {processors,memory,bridges,devices} nor a file; see 'zebdb-cds show --help'"},
        wrong_usage{"AnUnknownFormat", "show --format xml",
                    "--format: xml not in {table,text,json,jsonl,csv}; see 'zebdb-cds show --help'"},
        wrong_usage{"AnUnknownFormatOfATree", "tree --format csv",
                    "--format: csv not in {text,json}; see 'zebdb-cds tree --help'"},
        wrong_usage{"CsvOfEverything", "show --format csv",
                    "CSV holds one table: name processors, memory, bridges or devices; see 'zebdb-cds show --help'"}),
    [](const auto& tested) { return tested.param.name; });
