// SPDX-License-Identifier: Apache-2.0

/// The arguments and options that several subcommands share.
#ifndef TOOLS_SUBCOMMANDS_OPTIONS_H
#define TOOLS_SUBCOMMANDS_OPTIONS_H

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "console/time_text.h"
#include "sources/inventory.h"
#include "subcommands/command_line.h"

/// Declares the argument FILE, a CDS file.
void add_cds_file_argument(command_line& arguments, std::string& file);

/// Declares --database; `path` becomes $ZEBDB_DATABASE, or "inventory.db", when it is not given.
void add_database_option(command_line& arguments, std::string& path);

/// Declares --root; `folder` stays empty when it is not given.
void add_root_option(command_line& arguments, std::string& folder);

/// A line about how old the rows of an inventory are, for text, and which file they are from, unless that is redacted:
/// many a file is named after the serial number of its server. Empty where that is not noted.
std::string age_line(const inventory& shown, bool redacted = false);

/// Names of kinds as words of a command line: all of them, and as in "processors, memory, bridges or devices".
std::vector<std::string> names_of_kinds();
std::string choice_of_kinds();

/// Throws failure unless rows of a kind have a column of that name; of `kind` alone unless that is empty.
void require_known_column(const std::string& column, const std::string& kind = "");

/// Declares the argument KIND; `kind` stays empty when it is not given.
void add_kind_argument(command_line& arguments, std::string& kind);

/// The time that the option --at gives; nothing when that is empty. Throws failure for what is no time.
std::optional<moment> time_in_option(const std::string& at);

/// Declares what hides serial numbers.
void add_redact_flag(command_line& arguments, bool& value);

/// The formats in which a subcommand prints its answer, and the one that is chosen. `Write` points to a function that
/// writes the answer.
template <class Write>
class output_format {
public:
    /// Each with its name on the command line; the first is the default.
    output_format(std::string description, std::vector<std::pair<std::string, Write>> all)
        : description_(std::move(description)), all_(std::move(all)), chosen_(all_.front().first) {}

    /// Declares --format.
    void add_option(command_line& arguments) {
        std::vector<std::string> names;
        names.reserve(all_.size());
        for (const auto& [name, write] : all_) {
            names.push_back(name);
        }
        arguments.format_option(chosen_, description_, names);
    }

    /// What writes the chosen format.
    Write writer() const {
        return std::find_if(all_.begin(), all_.end(), [this](const auto& each) { return each.first == chosen_; })
            ->second;
    }

private:
    std::string description_;
    std::vector<std::pair<std::string, Write>> all_;
    std::string chosen_;
};

/// The two formats that most answers have.
template <class Write>
output_format<Write> text_or_json(Write text, Write json) {
    return {"text, for people; json, for programs", {{"text", text}, {"json", json}}};
}

#endif
