// SPDX-License-Identifier: Apache-2.0

#include "subcommands/run.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <zebdb_cds_parser/version.h>

#include "console/failure.h"
#include "console/output.h"
#include "console/wrapping.h"
#include "explanation/similar_name.h"
#include "subcommands/command_line.h"
#include "subcommands/subcommand.h"

namespace {

constexpr const char* purpose = "Loads CDS hardware descriptions into an inventory database and shows what it holds.";
constexpr const char* statuses = "Exit status: 0 done, 1 the answer is no, 2 there is none (the message says why).";
constexpr const char* help_name = "help";

// Names that are typed are short: a change for every three characters is a mistake, and more is another word.
constexpr std::size_t characters_a_change = 3;

std::string meant_text(const char* similar, const std::string& before = "") {
    return similar == nullptr ? "" : "; did you mean '" + before + similar + "'?";
}

// CLI11 breaks no lines. What stands behind the names of an option is indented as there.
std::string fitted(const std::string& help) {
    constexpr std::size_t width = 80;
    constexpr std::size_t description_column = 30;
    std::string text;
    std::istringstream in(help);
    for (std::string line; std::getline(in, line);) {
        const bool is_list = line.compare(0, 2, "  ") == 0 && line.compare(0, 11, "  zebdb-cds") != 0;
        const bool is_described = is_list && line.size() > description_column && line[description_column - 1] == ' ';
        const std::size_t indent = is_described ? description_column : 0;
        std::string before = line.substr(0, indent);
        for (const std::string& part : wrapped(line.substr(indent), width - indent)) {
            text += before + part + '\n';
            before = std::string(indent, ' ');
        }
    }
    return text;
}

constexpr const char* program = "zebdb-cds";

std::string help_of_all(const CLI::App& app) {
    return fitted(app.get_formatter()->make_help(&app, program, CLI::AppFormatMode::Normal));
}

std::string help_of(const CLI::App& named) {
    const std::string name = program + (' ' + named.get_name());
    return fitted(named.get_formatter()->make_help(&named, name, CLI::AppFormatMode::Normal));
}

void add_examples(command_line& arguments, const subcommand& each) {
    std::string text = "Examples:";
    for (const char* example : each.examples) {
        text += std::string("\n  ") + example;
    }
    arguments.remark(text);
}

std::vector<const char*> names_of_subcommands() {
    std::vector<const char*> names = {help_name};
    for (const subcommand& each : subcommands()) {
        names.push_back(each.name);
    }
    return names;
}

failure wrong_usage(const std::string& problem, const std::string& help) {
    return failure(problem + (problem.back() == '?' ? " See '" : "; see '") + help + "'");
}

failure no_subcommand(const std::string& word) {
    const char* similar = word.empty() ? nullptr : most_similar(word, names_of_subcommands(), characters_a_change);
    return wrong_usage("there is no subcommand " + in_quotes(word) + meant_text(similar), "zebdb-cds --help");
}

std::vector<std::string> long_options_of(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

// An abbreviation may mean something else tomorrow.
std::string offered_option(const CLI::App& app, const std::string& word) {
    const std::vector<std::string> names = long_options_of(app);
    const auto is_begun = [&word](const std::string& name) { return name.compare(0, word.size(), word) == 0; };
    if (word.size() > 2 && std::count_if(names.begin(), names.end(), is_begun) == 1) {
        return "; write " + in_quotes(*std::find_if(names.begin(), names.end(), is_begun)) + " in full";
    }
    std::vector<const char*> known;
    std::transform(names.begin(), names.end(), std::back_inserter(known),
                   [](const std::string& name) { return name.c_str(); });
    return meant_text(most_similar(word, known, characters_a_change));
}

std::string unexpected(const CLI::App& app, const std::vector<std::string>& words) {
    const auto is_option = [](const std::string& word) { return word.size() > 1 && word.front() == '-'; };
    const auto wrong = std::find_if(words.begin(), words.end(), is_option);
    if (wrong == words.end()) {
        return "the word " + in_quotes(words.front()) + " is one too many";
    }
    const std::string name = wrong->substr(0, wrong->find('='));
    if (app.get_option_no_throw(name) != nullptr) {
        return "the option " + in_quotes(name) + " has to stand behind " + in_quotes(app.get_name());
    }
    return "there is no option " + in_quotes(name) + offered_option(app, name);
}

failure refusal(const CLI::App& app, const CLI::Error& error) {
    const auto named = app.get_subcommands();
    const std::vector<std::string> left = app.remaining(true);
    if (named.empty() && !left.empty() && left.front().compare(0, 1, "-") != 0) {
        return no_subcommand(left.front());
    }
    const CLI::App& at = named.empty() ? app : *named.front();
    const std::string help = app.get_name() + (named.empty() ? "" : ' ' + at.get_name()) + " --help";
    const bool is_extra = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr && !left.empty();
    return wrong_usage(is_extra ? unexpected(at, left) : error.what(), help);
}

int print_help_about(const CLI::App& app, const std::string& name) {
    if (name.empty()) {
        print(help_of_all(app));
        return status_done;
    }
    const auto all = app.get_subcommands([&name](const CLI::App* each) { return each->get_name() == name; });
    if (all.empty()) {
        throw no_subcommand(name);
    }
    print(help_of(*all.front()));
    return status_done;
}

}  // namespace

int run(int argc, char** argv) {
    CLI::App app(purpose, program);
    app.set_version_flag("-V,--version", "zebdb-cds " ZEBDB_CDS_PARSER_VERSION_STRING, "Print the version and exit");
    app.footer(statuses);
    app.require_subcommand(0, 1);  // the name of a file may be that of a subcommand

    std::vector<declared_option> declared;
    std::vector<std::pair<CLI::App*, action>> actions;
    for (const subcommand& each : subcommands()) {
        CLI::App* named = app.add_subcommand(each.name, each.purpose);
        command_line arguments(*named, declared);
        actions.emplace_back(named, each.define(arguments));
        add_examples(arguments, each);
    }
    std::string asked;
    CLI::App* help = app.add_subcommand(help_name, "Print the help of a subcommand");
    command_line help_arguments(*help, declared);
    help_arguments.optional_argument("SUBCOMMAND", asked, "The subcommand; without one, all are listed");
    help_arguments.remark("Examples:\n  zebdb-cds help\n  zebdb-cds help load");
    actions.emplace_back(help, [&app, &asked] { return print_help_about(app, asked); });

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        const auto named = app.get_subcommands();
        print(named.empty() ? help_of_all(app) : help_of(*named.front()));
        return status_done;
    } catch (const CLI::CallForVersion& version) {
        print(std::string(version.what()) + '\n');
        return status_done;
    } catch (const CLI::Error& error) {
        throw refusal(app, error);
    }

    for (const auto& [named, act] : actions) {
        if (named->parsed()) {
            return act();
        }
    }
    write_error(help_of_all(app));
    return status_failed;
}
