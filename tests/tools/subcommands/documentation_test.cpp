// SPDX-License-Identifier: Apache-2.0

// The command itself says which subcommands, options and values there are; the manual page and the completion of a
// shell have to name them, and no others.

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include "support/quoted.h"
#include "tools/subcommands/command_test.h"

using testing::Contains;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

namespace {

constexpr const char* man_page = SOURCE_DIR "/tools/zebdb-cds.1";
constexpr const char* completion_script = SOURCE_DIR "/tools/zebdb-cds.bash";

using name_set = std::set<std::string>;

/// Option names without their dashes, by subcommand; those of the command itself stand at "".
using usage = std::map<std::string, name_set>;

name_set keys_of(const usage& documented) {
    name_set keys;
    for (const auto& [subcommand, options] : documented) {
        keys.insert(subcommand);
    }
    return keys;
}

std::vector<std::string> lines_of(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool begins_with(const std::string& line, const std::string& prefix) {
    return line.compare(0, prefix.size(), prefix) == 0;
}

// The word right behind `mark`, in those lines of `text` that begin with `prefix` and have the mark.
name_set words_behind(const std::string& mark, const std::string& prefix, const std::string& text) {
    name_set words;
    for (const std::string& line : lines_of(text)) {
        const std::size_t place = line.find(mark);
        if (begins_with(line, prefix) && place != std::string::npos) {
            const std::string rest = line.substr(place + mark.size());
            words.insert(rest.substr(0, rest.find_first_of(" ,=)")));
        }
    }
    return words;
}

// The lines of `text` behind the line `title`, up to one at which the section ends.
std::string section(const std::string& text, const std::string& title, bool (*is_end)(const std::string& line)) {
    std::string lines;
    bool inside = false;
    for (const std::string& line : lines_of(text)) {
        inside = inside && !is_end(line);
        lines += inside ? line + '\n' : "";
        inside = inside || line == title;
    }
    return lines;
}

std::string help_section(const std::string& help, const std::string& title) {
    return section(help, title, [](const std::string& line) { return line.empty(); });
}

std::string man_section(const std::string& page, const std::string& title) {
    return section(page, title,
                   [](const std::string& line) { return begins_with(line, ".Ss") || begins_with(line, ".Sh"); });
}

}  // namespace

class documentation_test : public command_test {
protected:
    std::string output(const std::string& shell_command) const {
        const command_result result = run(shell_command);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.err, IsEmpty());
        return result.out;
    }

    name_set options_in_help(const std::string& subcommand) const {
        return words_behind("--", "  -", help_section(output("zebdb-cds " + subcommand + " --help"), "Options:"));
    }

    usage usage_of_command() const {
        usage found = {{"", options_in_help("")}};
        for (const std::string& name :
             words_behind("  ", "  ", help_section(output("zebdb-cds --help"), "Subcommands:"))) {
            found[name] = options_in_help(name);
            EXPECT_THAT(found[name], Contains("help"));
        }
        EXPECT_THAT(keys_of(found), IsSupersetOf({"load", "show"}));
        return found;
    }

    // The values that the command takes behind `arguments`, which it lists when it is given another.
    name_set values_of(const std::string& arguments) const {
        const std::string message = run("zebdb-cds " + arguments + " nonsense").err;
        const std::size_t begin = message.find('{') + 1;
        std::istringstream list(message.substr(begin, message.find('}') - begin));
        name_set values;
        for (std::string value; std::getline(list, value, ',');) {
            values.insert(value);
        }
        return values;
    }

    // Every place where only certain values are taken: the subcommand and what stands before the value.
    std::vector<std::pair<std::string, std::string>> places_of_values() const {
        std::vector<std::pair<std::string, std::string>> places = {{"show", ""}, {"fields", ""}};
        for (const auto& [subcommand, options] : usage_of_command()) {
            if (options.count("--format") != 0) {
                places.emplace_back(subcommand, "--format");
            }
        }
        return places;
    }
};

class ManPage : public documentation_test {
protected:
    ManPage() : page_(output("cat " + quoted(man_page))) {}

    std::string section_of(const std::string& subcommand) const { return man_section(page_, ".Ss " + subcommand); }

    static name_set options_in(const std::string& part) { return words_behind("Fl -", ".It Fl ", part); }

    usage documented() const {
        usage found = {{"", options_in(man_section(page_, ".Sh DESCRIPTION"))}};
        for (const std::string& name : words_behind(".Ss ", ".Ss ", page_)) {
            found[name] = options_in(section_of(name));
            found[name].insert("help");  // which is the same everywhere
        }
        return found;
    }

    const std::string& page() const { return page_; }

private:
    std::string page_;
};

TEST_F(ManPage, HasEverySubcommandWithItsOptions) {
    const usage described = documented();
    for (const auto& [subcommand, options] : usage_of_command()) {
        ASSERT_THAT(keys_of(described), Contains(subcommand));
        EXPECT_EQ(described.at(subcommand), options) << subcommand;
    }
}

TEST_F(ManPage, HasNoOtherSubcommand) {
    EXPECT_THAT(keys_of(usage_of_command()), IsSupersetOf(keys_of(documented())));
}

TEST_F(ManPage, NamesEveryValue) {
    for (const auto& [subcommand, option] : places_of_values()) {
        const name_set values = values_of(subcommand + ' ' + option);
        ASSERT_THAT(values, Not(IsEmpty()));
        for (const std::string& value : values) {
            EXPECT_THAT(section_of(subcommand), HasSubstr("\n.Cm " + value)) << option;
        }
    }
}

TEST_F(ManPage, NamesTheEnvironmentThatTheHelpNames) {
    const name_set variables = words_behind("(Env:", "", output("zebdb-cds load --help"));
    ASSERT_THAT(variables, Not(IsEmpty()));
    for (const std::string& variable : variables) {
        EXPECT_THAT(page(), HasSubstr("\n.It Ev " + variable + "\n"));
    }
}

TEST_F(ManPage, IsWellFormed) {
    if (run("command -v mandoc").status != 0) {
        GTEST_SKIP() << "install mandoc";
    }
    EXPECT_EQ(output("mandoc -T lint -W warning " + quoted(man_page)), "");
}

class Readme : public documentation_test {
protected:
    Readme() : text_(output("cat " + quoted(SOURCE_DIR "/README.md"))) {}

    const std::string& text() const { return text_; }

private:
    std::string text_;
};

TEST_F(Readme, ShowsEverySubcommand) {
    for (const auto& [subcommand, options] : usage_of_command()) {
        if (!subcommand.empty()) {
            EXPECT_THAT(text(), HasSubstr("\n    $ zebdb-cds " + subcommand + " "));
        }
    }
}

TEST_F(Readme, NamesEveryKind) {
    for (const std::string& kind : values_of("show")) {
        EXPECT_THAT(text(), ContainsRegex("`zebdb-cds show \\[[a-z|]*" + kind));
    }
}

using OtherCompletion = documentation_test;

TEST_F(OtherCompletion, OfZshAndFishIsWhatTheCommandPrints) {
    for (const std::string shell : {"zsh", "fish"}) {
        EXPECT_EQ(output("zebdb-cds completion " + shell),
                  output("cat " + quoted(SOURCE_DIR "/tools/zebdb-cds." + shell)));
    }
}

TEST_F(OtherCompletion, OffersKindsBesideFilesToShow) {
    EXPECT_THAT(output("zebdb-cds completion fish"), HasSubstr("from show' -a 'processors memory bridges devices'\n"));
    EXPECT_THAT(
        output("zebdb-cds completion zsh"),
        HasSubstr("{_alternative \"values:value:(processors memory bridges devices)\" \"files:file:_files\"}'"));
}

TEST_F(OtherCompletion, OfFishOffersNoFilesToWhatTakesNone) {
    EXPECT_THAT(output("zebdb-cds completion fish"),
                HasSubstr("from fields' -f -a 'processors memory bridges devices'\n"));
}

TEST_F(OtherCompletion, OfFishHasEveryOption) {
    const std::string script = output("zebdb-cds completion fish");
    for (const auto& [subcommand, options] : usage_of_command()) {
        for (const std::string& option : subcommand == "help" ? name_set() : options) {
            EXPECT_THAT(script, ContainsRegex((subcommand.empty() ? "use_subcommand" : "from " + subcommand) +
                                              ".* -l " + option));
        }
    }
}

class Completion : public documentation_test {
protected:
    // What is offered for the last of the words, which may be begun or empty, one a line.
    std::string offered_lines(const std::vector<std::string>& words) const {
        std::string list;
        for (const std::string& word : words) {
            list += " '" + word + "'";
        }
        write("complete.bash", "source " + quoted(completion_script) + "\nCOMP_WORDS=(zebdb-cds" + list +
                                   ")\nCOMP_CWORD=" + std::to_string(words.size()) +
                                   "\n_zebdb_cds\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n");
        return output("bash complete.bash");
    }

    name_set offered(const std::vector<std::string>& words) const {
        name_set found = words_behind("", "", offered_lines(words));
        found.erase("");
        return found;
    }

    name_set offered_options(const std::vector<std::string>& words) const {
        return words_behind("--", "--", offered_lines(words));
    }

    usage documented() const {
        usage found = {{"", offered_options({"--"})}};
        for (const std::string& name : offered({""})) {
            found[name] = offered_options({name, "--"});
        }
        return found;
    }

    // What a shell makes of the keys typed at its terminal. Tabs complete.
    std::string typed(const std::string& keys) const {
        write("keys", "source " + quoted(completion_script) + "\n" + keys + "\nexit\n");
        return run("TERM=dumb script --quiet --return --command 'bash --norc --noprofile -i' /dev/null <keys").out;
    }
};

TEST_F(Completion, HasEverySubcommandWithItsOptions) {
    const usage completed = documented();
    for (const auto& [subcommand, options] : usage_of_command()) {
        ASSERT_THAT(keys_of(completed), Contains(subcommand));
        EXPECT_EQ(completed.at(subcommand), options) << subcommand;
    }
}

TEST_F(Completion, HasNoOtherSubcommand) {
    EXPECT_THAT(keys_of(usage_of_command()), IsSupersetOf(keys_of(documented())));
}

TEST_F(Completion, OffersEveryValueAndNoOther) {
    for (const auto& [subcommand, option] : places_of_values()) {
        const std::vector<std::string> before =
            option.empty() ? std::vector<std::string>{subcommand} : std::vector<std::string>{subcommand, option};
        std::vector<std::string> words = before;
        words.emplace_back();
        EXPECT_EQ(offered(words), values_of(subcommand + ' ' + option)) << subcommand;
    }
}

TEST_F(Completion, OffersWhatBeginsLikeTheWord) {
    EXPECT_EQ(offered({"sh"}), name_set{"show"});
    EXPECT_EQ(offered({"show", "me"}), name_set{"memory"});
    EXPECT_EQ(offered({"show", "--fo"}), name_set{"--format"});
}

TEST_F(Completion, OffersTheValuesOfAnOptionBehindAnEqualsSign) {
    EXPECT_EQ(offered({"show", "--format", "="}), (name_set{"table", "text", "json", "jsonl", "csv"}));
    EXPECT_EQ(offered({"diff", "--format", "=", "j"}), name_set{"json"});
}

TEST_F(Completion, OffersNoFileWhereThereIsNone) {
    EXPECT_THAT(offered({"dump", "--indent", ""}), IsEmpty());
}

TEST_F(Completion, FindsFilesInTheShell) {
    write("server one.xml", "<component/>");
    EXPECT_THAT(typed("zebdb-cds dump ser\t"), HasSubstr("\n<component>\r\n</component>\r\n"));
    EXPECT_THAT(typed("zebdb-cds diff ser\tser\t"), HasSubstr("\nNo difference.\r\n"));
}

TEST_F(Completion, FindsTheDatabaseInTheShell) {
    write("server.xml", "<component/>");
    ASSERT_EQ(run("zebdb-cds load server.xml --database rows.db").status, 0);
    EXPECT_THAT(typed("zebdb-cds show memory --database ro\t"), HasSubstr("\nMemory (0)"));
}
