// zebdb-cds tree: prints the PCI bridges and functions of an inventory as a tree.

#include <algorithm>
#include <iterator>
#include <memory>

#include "console/failure.h"
#include "console/output_stream.h"
#include "sources/database_file.h"
#include "sources/inventory.h"
#include "sources/open_inventory.h"
#include "subcommands/subcommand.h"
#include "topology/pci_names.h"
#include "topology/pci_topology.h"
#include "topology/topology_formats.h"

namespace {

struct tree_options {
    std::string file;
    std::string database;
    std::string format = "text";
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

inventory_table read(const inventory& from, const std::string& name) {
    return from.read(*std::find_if(std::begin(inventory_kinds), std::end(inventory_kinds),
                                   [&name](const inventory_kind& kind) { return kind.name == name; }));
}

int tree(const command_line& arguments, const tree_options& options) {
    const inventory shown = open(arguments, options);
    const inventory_table bridges = read(shown, "bridges");
    const inventory_table functions = read(shown, "devices");
    pci_names names;
    output_buffer buffer;
    std::ostream out(&buffer);
    out.exceptions(std::ios::badbit);
    const auto write = options.format == "json" ? write_topology_json : write_topology_text;
    write(pci_topology(bridges, functions), names, out);
    buffer.finish();
    return status_done;
}

}  // namespace

action define_tree(command_line& arguments) {
    const auto options = std::make_shared<tree_options>();
    arguments.optional_argument(
        "FILE", options->file,
        "An inventory: a CDS file or a database; - is standard input. Without it, that of --database");
    add_text_or_json_option(arguments, options->format);
    add_database_option(arguments, options->database);
    return [options, arguments] { return tree(arguments, *options); };
}
