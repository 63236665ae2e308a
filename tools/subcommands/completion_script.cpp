// SPDX-License-Identifier: Apache-2.0

#include "subcommands/completion_script.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "subcommands/command_line.h"
#include "subcommands/subcommand.h"

namespace {

struct declared_subcommand {
    const subcommand* named;
    std::vector<declared_option> options;
};

std::vector<declared_subcommand> declared_subcommands() {
    std::vector<declared_subcommand> all;
    for (const subcommand& each : subcommands()) {
        CLI::App app;
        declared_subcommand declared = {&each, {}};
        command_line arguments(app, declared.options);
        each.define(arguments);
        declared.options.insert(declared.options.begin(), {"-h,--help", "", "Print this help message and exit", {}});
        all.push_back(declared);
    }
    return all;
}

bool is_option(const declared_option& each) {
    return each.names.front() == '-';
}

bool is_flag(const declared_option& each) {
    return is_option(each) && each.type.empty();
}

std::string short_name(const declared_option& each) {
    return each.names[1] == '-' ? "" : each.names.substr(1, 1);
}

std::string long_name(const declared_option& each) {
    return each.names.substr(each.names.find("--") + 2);
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

// In single quotes, for both shells; `special` are characters that mean something to what takes the text.
std::string quoted(const std::string& text, const std::string& special = "") {
    std::string word = "'";
    for (const char character : text) {
        if (character == '\'') {
            word += "'\\''";
        } else {
            word += special.find(character) == std::string::npos ? "" : "\\";
            word += character;
        }
    }
    return word + '\'';
}

std::string zsh_values(const declared_option& each) {
    if (!each.choices.empty()) {
        return ":(" + joined(each.choices) + ')';
    }
    if (each.type == "DIR") {
        return ":_directories";
    }
    return each.type == "PATH" || each.type.empty() ? ":_files" : ": ";
}

std::string zsh_option(const declared_option& each) {
    const std::string description = '[' + each.description + ']';
    const std::string values = is_flag(each) ? "" : ':' + each.type + zsh_values(each);
    const std::string equals = is_flag(each) ? "" : "=";
    std::string text = "        " + quoted("--" + long_name(each) + equals + description + values, "`");
    if (!short_name(each).empty()) {
        text += " \\\n        " + quoted('-' + short_name(each) + description, "`");
    }
    return text + " \\\n";
}

// The values of the arguments that take certain ones.
std::vector<std::string> values_of_arguments(const declared_subcommand& each) {
    std::vector<std::string> values;
    for (const declared_option& option : each.options) {
        if (!is_option(option)) {
            values.insert(values.end(), option.choices.begin(), option.choices.end());
        }
    }
    return values;
}

bool takes_files(const declared_subcommand& each) {
    return std::any_of(each.options.begin(), each.options.end(),
                       [](const declared_option& option) { return !is_option(option) && option.choices.empty(); });
}

std::string zsh_words(const declared_subcommand& each) {
    const std::vector<std::string> values = values_of_arguments(each);
    if (values.empty()) {
        return takes_files(each) ? "'*:file:_files'" : "'*: :'";
    }
    const std::string list = '(' + joined(values) + ')';
    return takes_files(each) ? "'*:value or file:{_alternative \"values:value:" + list + "\" \"files:file:_files\"}'"
                             : quoted("1:value:" + list);
}

std::string zsh_arguments(const declared_subcommand& each) {
    std::string text;
    for (const declared_option& option : each.options) {
        text += is_option(option) ? zsh_option(option) : "";
    }
    return text + "        " + zsh_words(each) + '\n';
}

std::string fish_line(const std::string& subcommand) {
    return "complete -c zebdb-cds -n '__fish_seen_subcommand_from " + subcommand + "'";
}

std::string fish_words(const declared_subcommand& each) {
    const std::vector<std::string> values = values_of_arguments(each);
    if (values.empty() && takes_files(each)) {
        return "";
    }
    return fish_line(each.named->name) + (takes_files(each) ? "" : " -f") +
           (values.empty() ? "" : " -a " + quoted(joined(values))) + '\n';
}

std::string fish_option(const std::string& subcommand, const declared_option& each) {
    std::string text =
        fish_line(subcommand) + " -l " + long_name(each) + (short_name(each).empty() ? "" : " -s " + short_name(each));
    if (!each.choices.empty()) {
        text += " -x -a " + quoted(joined(each.choices));
    } else if (each.type == "DIR") {
        text += " -x -a '(__fish_complete_directories)'";
    } else if (!is_flag(each)) {
        text += each.type == "PATH" ? " -r -F" : " -x";
    }
    return text + " -d " + quoted(each.description) + '\n';
}

}  // namespace

std::string zsh_completion() {
    std::string names;
    std::string cases;
    for (const declared_subcommand& each : declared_subcommands()) {
        names += "        " + quoted(std::string(each.named->name) + ':' + each.named->purpose) + '\n';
        cases +=
            std::string("    ") + each.named->name + ")\n      _arguments \\\n" + zsh_arguments(each) + "      ;;\n";
    }
    names += "        'help:Print the help of a subcommand'\n";
    cases += "    help)\n      _describe subcommand subcommands\n      ;;\n";
    return "#compdef zebdb-cds\n# Printed by: zebdb-cds completion zsh\n\n_zebdb_cds() {\n"
           "  local -a subcommands=(\n" +
           names +
           "  )\n  if (( CURRENT == 2 )); then\n    _describe subcommand subcommands\n"
           "    _arguments '--help[Print a summary and exit]' '-h[Print a summary and exit]' \\\n"
           "      '--version[Print the version and exit]' '-V[Print the version and exit]'\n"
           "    return\n  fi\n  local chosen=$words[2]\n  shift words\n  (( CURRENT-- ))\n  case $chosen in\n" +
           cases + "  esac\n}\n\n_zebdb_cds \"$@\"\n";
}

std::string fish_completion() {
    std::string text =
        "# Printed by: zebdb-cds completion fish\n\n"
        "complete -c zebdb-cds -n __fish_use_subcommand -l help -s h -d 'Print a summary and exit'\n"
        "complete -c zebdb-cds -n __fish_use_subcommand -l version -s V -d 'Print the version and exit'\n";
    for (const declared_subcommand& each : declared_subcommands()) {
        text += std::string("complete -c zebdb-cds -n __fish_use_subcommand -f -a ") + each.named->name + " -d " +
                quoted(each.named->purpose) + '\n' + fish_words(each);
        for (const declared_option& option : each.options) {
            text += is_option(option) ? fish_option(each.named->name, option) : "";
        }
    }
    std::vector<std::string> names;
    for (const subcommand& each : subcommands()) {
        names.emplace_back(each.name);
    }
    return text + "complete -c zebdb-cds -n __fish_use_subcommand -f -a help -d 'Print the help of a subcommand'\n" +
           "complete -c zebdb-cds -n '__fish_seen_subcommand_from help' -f -a " + quoted(joined(names)) + '\n';
}
