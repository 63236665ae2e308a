// SPDX-License-Identifier: Apache-2.0

// zebdb-cds tree: prints the PCI bridges and functions of an inventory as a tree.

#include <ios>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "console/failure.h"
#include "console/output.h"
#include "console/output_stream.h"
#include "console/text_table.h"
#include "rows/kinds.h"
#include "rows/pci_address_text.h"
#include "rows/table.h"
#include "sources/inventory.h"
#include "sources/open_inventory.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"
#include "topology/pci_names.h"
#include "topology/pci_topology.h"
#include "topology/topology_formats.h"

namespace {

void write_text(const std::vector<pci_part>& parts, std::ostream& out) {
    write_topology_text(parts, output_style(), out);
}

struct tree_options {
    std::string file;
    std::string database;
    std::string part;  // empty for the whole tree
    output_format<decltype(&write_topology_json)> format = text_or_json(write_text, write_topology_json);
};

inventory open(const command_line& arguments, const tree_options& options) {
    if (!arguments.has("FILE")) {
        return inventory(options.database);
    }
    if (arguments.has("--database")) {  // and not only in the environment
        throw failure("FILE and --database exclude each other; see 'zebdb-cds tree --help'");
    }
    return open_inventory(options.file);
}

int tree(const command_line& arguments, const tree_options& options) {
    const inventory shown = open(arguments, options);
    const inventory_table bridges = shown.read(kinds::bridges);
    const inventory_table functions = shown.read(kinds::devices);
    pci_names names;
    std::vector<pci_part> parts = pci_topology(bridges, functions, names);
    if (!options.part.empty()) {
        const auto address = full_pci_address(options.part);
        if (!address) {
            throw failure("--part " + in_quotes(options.part) + " is no PCI address, as 0000:3b:00.0 or 3b:00.0 is");
        }
        parts = part_of_topology(parts, *address);
        if (parts.empty()) {
            complain("there is nothing at " + *address + " in the inventory; 'zebdb-cds explain FILE --part " +
                     *address + "' tells what became of it");
            return status_no;
        }
    }
    output_buffer buffer;
    std::ostream out(&buffer);
    out.exceptions(std::ios::badbit);
    const auto write = options.format.writer();
    write(parts, out);
    if (write == write_text) {
        out << age_line(shown);
    }
    buffer.finish();
    return status_done;
}

}  // namespace

action define_tree(command_line& arguments) {
    const auto options = std::make_shared<tree_options>();
    arguments.optional_argument(
        "FILE", options->file,
        "An inventory: a CDS file or a database; - is standard input. Without it, that of --database");
    arguments.text_option("--part", "ADDRESS", options->part,
                          "Print what is at a PCI address, with the path to it and what is behind it");
    options->format.add_option(arguments);
    add_database_option(arguments, options->database);
    return [options, arguments] { return tree(arguments, *options); };
}
