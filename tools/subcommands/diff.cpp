// SPDX-License-Identifier: Apache-2.0

// zebdb-cds diff: prints what differs between two inventories.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "console/failure.h"
#include "console/output.h"
#include "console/text_table.h"
#include "difference/difference.h"
#include "difference/difference_formats.h"
#include "rows/table.h"
#include "sources/inventory.h"
#include "sources/open_inventory.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

std::string text_of(const std::vector<table_difference>& differences) {
    return difference_text(differences, output_style());
}

struct diff_options {
    std::string old_name;
    std::string new_name;
    output_format<decltype(&difference_json)> format = text_or_json(text_of, difference_json);
    bool redact = false;
};

int diff(const diff_options& options) {
    if (options.old_name == "-" && options.new_name == "-") {
        throw failure("only one of the two inventories can be standard input");
    }
    std::vector<inventory_table> old_tables = open_inventory(options.old_name).read_all();
    std::vector<inventory_table> new_tables = open_inventory(options.new_name).read_all();
    std::vector<table_difference> differences = compare(std::move(old_tables), std::move(new_tables));
    if (options.redact) {  // only now: serial numbers tell what moved
        for (table_difference& difference : differences) {
            redact(difference.old_table);
            redact(difference.new_table);
        }
    }
    print(options.format.writer()(differences));
    return is_same(differences) ? status_done : status_no;
}

}  // namespace

action define_diff(command_line& arguments) {
    const auto options = std::make_shared<diff_options>();
    arguments.argument("OLD", options->old_name, "An inventory: a CDS file or a database; - is standard input");
    arguments.argument("NEW", options->new_name, "The inventory to compare it with");
    options->format.add_option(arguments);
    add_redact_flag(arguments, options->redact);
    arguments.footer("Exit status: 0 the same, 1 different, 2 could not compare (the message says why).");
    return [options] { return diff(*options); };
}
