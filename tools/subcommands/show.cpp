// SPDX-License-Identifier: Apache-2.0

// zebdb-cds show: prints what an inventory database holds.

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "console/failure.h"
#include "console/output.h"
#include "console/text_table.h"
#include "console/utf8.h"
#include "listing/listing_formats.h"
#include "rows/kinds.h"
#include "rows/table.h"
#include "sources/inventory.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

std::string text_of(const std::vector<inventory_table>& tables) {
    return listing_text(tables, output_style());
}

struct show_options {
    std::string kind;  // empty for all
    std::string database;
    output_format<decltype(&listing_json)> format = {
        "table, for people; json or csv, for programs",
        {{"table", text_of}, {"text", text_of}, {"json", listing_json}, {"csv", listing_csv}},
    };
    bool redact = false;
};

std::vector<std::string> names_of_kinds() {
    std::vector<std::string> names;
    std::transform(std::begin(kinds::all), std::end(kinds::all), std::back_inserter(names),
                   [](const inventory_kind* kind) { return kind->name; });
    return names;
}

// As in "processors, memory, bridges or devices".
std::string choice_of_kinds() {
    const std::vector<std::string> names = names_of_kinds();
    std::string choice = names.front();
    for (std::size_t i = 1; i < names.size(); ++i) {
        choice += (i + 1 == names.size() ? " or " : ", ") + names[i];
    }
    return choice;
}

std::vector<inventory_table> read_tables(const show_options& options) {
    const inventory shown(options.database);
    std::vector<inventory_table> tables;
    for (const inventory_kind* kind : kinds::all) {
        if (options.kind.empty() || options.kind == kind->name) {
            tables.push_back(shown.read(*kind));
        }
    }
    return tables;
}

// CSV has no escapes.
void make_printable(inventory_table& table) {
    std::transform(table.columns.begin(), table.columns.end(), table.columns.begin(), printable);
    for (std::vector<inventory_value>& row : table.rows) {
        for (inventory_value& value : row) {
            if (auto* text = std::get_if<std::string>(&value)) {
                *text = printable(*text);
            }
        }
    }
}

int show(const show_options& options) {
    const auto write = options.format.writer();
    if (write == listing_csv && options.kind.empty()) {
        throw failure("CSV holds one table: name " + choice_of_kinds() + "; see 'zebdb-cds show --help'");
    }
    std::vector<inventory_table> tables = read_tables(options);
    if (options.redact) {
        std::for_each(tables.begin(), tables.end(), redact);
    }
    if (write == listing_csv && ::isatty(STDOUT_FILENO) == 1) {
        std::for_each(tables.begin(), tables.end(), make_printable);
    }
    print(write(tables));
    return status_done;
}

}  // namespace

action define_show(command_line& arguments) {
    const auto options = std::make_shared<show_options>();
    arguments.optional_argument("KIND", options->kind, choice_of_kinds() + "; all of them if none is named",
                                names_of_kinds());
    options->format.add_option(arguments);
    add_redact_flag(arguments, options->redact);
    add_database_option(arguments, options->database);
    return [options] { return show(*options); };
}
