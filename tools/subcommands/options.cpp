// SPDX-License-Identifier: Apache-2.0

#include "subcommands/options.h"

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "console/failure.h"
#include "console/output.h"
#include "console/time_text.h"
#include "rows/fields.h"
#include "rows/kinds.h"
#include "sources/inventory.h"
#include "sources/source_record.h"
#include "subcommands/command_line.h"

void add_cds_file_argument(command_line& arguments, std::string& file) {
    arguments.argument("FILE", file, "The CDS file; - is standard input");
}

void add_database_option(command_line& arguments, std::string& path) {
    path = "inventory.db";
    arguments.path_option("--database", "PATH", path, "The inventory database", "ZEBDB_DATABASE");
}

void add_root_option(command_line& arguments, std::string& folder) {
    arguments.path_option("--root", "DIR", folder,
                          "Keep /var/DS, /var/vonk, /var/log, /tmp and /bin/pci_digest.sh below this folder instead of "
                          "using the machine's own");
}

std::string age_line(const inventory& shown, bool redacted) {
    auto source = shown.source();
    if (source && redacted) {
        source->name.clear();
    }
    return source ? age_text(*source, std::time(nullptr)) + '\n' : "";
}

std::vector<std::string> names_of_kinds() {
    std::vector<std::string> names;
    std::transform(std::begin(kinds::all), std::end(kinds::all), std::back_inserter(names),
                   [](const inventory_kind* kind) { return kind->name; });
    return names;
}

std::string choice_of_kinds() {
    const std::vector<std::string> names = names_of_kinds();
    std::string choice = names.front();
    for (std::size_t i = 1; i < names.size(); ++i) {
        choice += (i + 1 == names.size() ? " or " : ", ") + names[i];
    }
    return choice;
}

void require_known_column(const std::string& column, const std::string& kind) {
    const bool is_known = std::any_of(std::begin(kinds::all), std::end(kinds::all), [&](const inventory_kind* each) {
        return (kind.empty() || kind == each->name) && find_field(*each, column) != nullptr;
    });
    if (!is_known) {
        throw failure("there is no column " + in_quotes(column) + (kind.empty() ? "" : " of " + kind) +
                      "; 'zebdb-cds fields" + (kind.empty() ? "" : ' ' + kind) + "' lists them");
    }
}

void add_kind_argument(command_line& arguments, std::string& kind) {
    arguments.optional_argument("KIND", kind, choice_of_kinds() + "; all of them if none is named", names_of_kinds());
}

std::optional<moment> time_in_option(const std::string& at) {
    if (at.empty()) {
        return std::nullopt;
    }
    const auto time = rfc3339_time(at);
    if (!time) {
        throw failure("--at " + in_quotes(at) + " is no time, as 2026-11-19T10:00:00Z is");
    }
    return time;
}

void add_redact_flag(command_line& arguments, bool& value) {
    arguments.flag("--redact", value, "Hide serial numbers and asset tags");
}
