// SPDX-License-Identifier: Apache-2.0

// zebdb-cds diff: prints what differs between two inventories.

#include <memory>
#include <string>
#include <vector>

#include "console/failure.h"
#include "console/output.h"
#include "console/text_table.h"
#include "console/wrapping.h"
#include "difference/comparable_tables.h"
#include "difference/difference.h"
#include "difference/difference_formats.h"
#include "rows/redaction.h"
#include "rows/table.h"
#include "sources/input_file.h"
#include "sources/inventory.h"
#include "sources/open_inventory.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

std::string differences_text_of(const comparison& compared) {
    const text_style style = output_style();
    return fitted_lines(difference_text(compared, style), style.width);
}

struct diff_options {
    std::string old_name;
    std::string new_name;
    output_format<decltype(&difference_json)> format = text_or_json(differences_text_of, difference_json);
    std::vector<std::string> ignored;
    bool counts = false;
    bool redact = false;
};

std::vector<std::string> ignored_columns_of(const diff_options& options) {
    std::vector<std::string> columns;
    for (const std::string& name : options.ignored) {
        for (const std::string& column : ignored_columns(name)) {
            require_known_column(column);
            columns.push_back(column);
        }
    }
    return columns;
}

std::string answer(const diff_options& options, const comparison& compared) {
    const auto write = options.format.writer();
    if (!options.counts) {
        return write(compared);
    }
    if (write != differences_text_of) {
        throw failure("--stat counts for people, and --format json holds everything; see 'zebdb-cds diff --help'");
    }
    return difference_counts(compared, output_style());
}

int diff(const diff_options& options) {
    if (is_standard_input(options.old_name) && is_standard_input(options.new_name)) {
        throw failure("only one of the two inventories can be standard input");
    }
    const std::vector<std::string> ignored = ignored_columns_of(options);
    const std::vector<inventory_table> old_tables = open_inventory(options.old_name).read_all();
    const std::vector<inventory_table> new_tables = open_inventory(options.new_name).read_all();
    comparison compared = compare(old_tables, new_tables, ignored);
    if (options.redact) {  // only now: serial numbers tell what moved
        for (table_difference& difference : compared.kinds) {
            redact(difference.old_table);
            redact(difference.new_table);
        }
    }
    print(answer(options, compared));
    return compared.is_same() ? status_done : status_no;
}

}  // namespace

action define_diff(command_line& arguments) {
    const auto options = std::make_shared<diff_options>();
    arguments.argument("OLD", options->old_name, "An inventory: a CDS file or a database; - is standard input");
    arguments.argument("NEW", options->new_name, "The inventory to compare it with");
    options->format.add_option(arguments);
    arguments.list_option(
        "--ignore", "COLUMN,...", options->ignored,
        "Leave these columns out of the comparison; serials stands for serial numbers and asset tags");
    arguments.flag("--stat", options->counts, "Print only how many parts of each kind differ");
    add_redact_flag(arguments, options->redact);
    arguments.footer("Exit status: 0 the same, 1 different, 2 could not compare (the message says why).");
    return [options] { return diff(*options); };
}
