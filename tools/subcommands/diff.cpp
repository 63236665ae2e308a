// zebdb-cds diff: prints what differs between two inventories.

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include "console/failure.h"
#include "console/output.h"
#include "difference/difference.h"
#include "difference/difference_formats.h"
#include "sources/inventory.h"
#include "sources/open_inventory.h"
#include "subcommands/subcommand.h"

namespace {

struct diff_options {
    std::string old_name;
    std::string new_name;
    std::string format = "text";
    bool redact = false;
};

std::vector<inventory_table> read_tables(const std::string& name) {
    const inventory read = open_inventory(name);
    std::vector<inventory_table> tables;
    std::transform(std::begin(inventory_kinds), std::end(inventory_kinds), std::back_inserter(tables),
                   [&read](const inventory_kind& kind) { return read.read(kind); });
    return tables;
}

int diff(const diff_options& options) {
    if (options.old_name == "-" && options.new_name == "-") {
        throw failure("only one of the two inventories can be standard input");
    }
    std::vector<inventory_table> old_tables = read_tables(options.old_name);
    std::vector<inventory_table> new_tables = read_tables(options.new_name);
    std::vector<table_difference> differences = compare(std::move(old_tables), std::move(new_tables));
    if (options.redact) {  // only now: serial numbers tell what moved
        for (table_difference& difference : differences) {
            redact(difference.old_table);
            redact(difference.new_table);
        }
    }
    print(options.format == "json" ? difference_json(differences) : difference_text(differences));
    return is_same(differences) ? status_done : status_no;
}

}  // namespace

action define_diff(command_line& arguments) {
    const auto options = std::make_shared<diff_options>();
    arguments.argument("OLD", options->old_name, "An inventory: a CDS file or a database; - is standard input");
    arguments.argument("NEW", options->new_name, "The inventory to compare it with");
    add_text_or_json_option(arguments, options->format);
    add_redact_flag(arguments, options->redact);
    arguments.footer("Exit status: 0 the same, 1 different, 2 could not compare (the message says why).");
    return [options] { return diff(*options); };
}
