// SPDX-License-Identifier: Apache-2.0

// zebdb-cds show: prints what an inventory database holds.

#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "console/failure.h"
#include "console/output.h"
#include "console/text_table.h"
#include "console/utf8.h"
#include "listing/listing_formats.h"
#include "rows/kinds.h"
#include "rows/redaction.h"
#include "rows/table.h"
#include "sources/input_file.h"
#include "sources/inventory.h"
#include "sources/open_inventory.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"
#include "topology/pci_labels.h"
#include "topology/pci_names.h"

namespace {

struct show_options;
using listing_writer = std::string (*)(const std::vector<inventory_table>& tables, const show_options& options);

std::string table_of(const std::vector<inventory_table>& tables, const show_options& options);

std::string json_of(const std::vector<inventory_table>& tables, const show_options&) {
    return listing_json(tables);
}

std::string jsonl_of(const std::vector<inventory_table>& tables, const show_options&) {
    return listing_jsonl(tables);
}

std::string csv_of(const std::vector<inventory_table>& tables, const show_options&) {
    return listing_csv(tables);
}

struct show_options {
    std::string first;   // a kind or a file, as they come
    std::string second;  // the other
    std::string kind;    // empty for all
    std::string file;    // empty for the database
    std::string database;
    output_format<listing_writer> format = {
        "table, for people; json, jsonl or csv, for programs",
        {{"table", table_of}, {"text", table_of}, {"json", json_of}, {"jsonl", jsonl_of}, {"csv", csv_of}},
    };
    listing_view view;
    bool redact = false;
};

std::string table_of(const std::vector<inventory_table>& tables, const show_options& options) {
    std::vector<inventory_table> labelled = tables;
    pci_names names;
    for (inventory_table& table : labelled) {
        add_pci_labels(table, names);
    }
    return listing_text(labelled, options.view, output_style());
}

// As in "processors,memory,bridges,devices".
std::string list_of_kinds() {
    std::string list;
    for (const std::string& name : names_of_kinds()) {
        list += (list.empty() ? "" : ",") + name;
    }
    return list;
}

bool is_kind(const std::string& word) {
    const std::vector<std::string> names = names_of_kinds();
    return std::find(names.begin(), names.end(), word) != names.end();
}

failure neither_kind_nor_file(const std::string& word) {
    return failure(in_quotes(word) + " is neither a kind {" + list_of_kinds() +
                   "} nor a file; see 'zebdb-cds show --help'");
}

// A word is a kind where there is one of its name; a file of that name goes with a folder in front.
void read_words(const command_line& arguments, show_options& options) {
    for (const auto& [name, word] : {std::make_pair("KIND", options.first), std::make_pair("FILE", options.second)}) {
        if (!arguments.has(name)) {
            continue;
        }
        if (word.empty()) {
            throw neither_kind_nor_file(word);
        }
        std::string& named = is_kind(word) ? options.kind : options.file;
        if (!named.empty()) {
            throw failure("there is one KIND and one FILE at most, and " + in_quotes(word) +
                          " is another; see 'zebdb-cds show --help'");
        }
        named = word;
    }
}

bool is_there(const std::string& file) {
    return is_standard_input(file) || ::access(file.c_str(), F_OK) == 0;
}

inventory open(const command_line& arguments, const show_options& options) {
    if (options.file.empty()) {
        return inventory(options.database);
    }
    if (arguments.has("--database")) {  // and not only in the environment
        throw failure("FILE and --database exclude each other; see 'zebdb-cds show --help'");
    }
    if (!is_there(options.file) && options.file.find_first_of("./") == std::string::npos) {
        throw neither_kind_nor_file(options.file);
    }
    return open_inventory(options.file);
}

std::vector<inventory_table> read_tables(const inventory& shown, const show_options& options) {
    std::vector<inventory_table> tables;
    for (const inventory_kind* kind : kinds::all) {
        if (options.kind.empty() || options.kind == kind->name) {
            tables.push_back(shown.read(*kind));
        }
    }
    return tables;
}

// Of every kind that has one of them; of the one that was named in any case.
void keep_chosen_columns(std::vector<inventory_table>& tables, const show_options& options) {
    for (inventory_table& table : tables) {
        keep_columns(table, options.view.columns);
    }
    if (options.kind.empty()) {
        tables.erase(std::remove_if(tables.begin(), tables.end(),
                                    [](const inventory_table& table) { return table.columns.empty(); }),
                     tables.end());
    }
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

int show(const command_line& arguments, show_options options) {
    read_words(arguments, options);
    for (const std::string& column : options.view.columns) {
        require_known_column(column, options.kind);
    }
    const auto write = options.format.writer();
    if (write == csv_of && options.kind.empty()) {
        throw failure("CSV holds one table: name " + choice_of_kinds() + "; see 'zebdb-cds show --help'");
    }
    const inventory shown = open(arguments, options);
    std::vector<inventory_table> tables = read_tables(shown, options);
    if (!options.view.columns.empty()) {
        keep_chosen_columns(tables, options);
    }
    if (options.redact) {
        std::for_each(tables.begin(), tables.end(), [](inventory_table& table) { redact(table); });
    }
    if (write == csv_of && ::isatty(STDOUT_FILENO) == 1) {
        std::for_each(tables.begin(), tables.end(), make_printable);
    }
    const std::string age = write == table_of ? age_line(shown, options.redact) : "";
    print(write(tables, options) + (age.empty() ? "" : '\n' + age));
    return status_done;
}

}  // namespace

action define_show(command_line& arguments) {
    const auto options = std::make_shared<show_options>();
    arguments.suggested_argument("KIND", options->first, choice_of_kinds() + "; all of them if none is named",
                                 names_of_kinds());
    arguments.optional_argument("FILE", options->second,
                                "An inventory: a CDS file or a database; - is standard input. Without it, that of "
                                "--database");
    options->format.add_option(arguments);
    arguments.list_option("--columns", "NAME,...", options->view.columns,
                          "Show these columns, also where they hold nothing; 'zebdb-cds fields' lists them");
    arguments.flag("--wide", options->view.wide, "Show columns that hold nothing, too, in lines of any length");
    add_redact_flag(arguments, options->redact);
    add_database_option(arguments, options->database);
    return [options, arguments] { return show(arguments, *options); };
}
