// zebdb-cds tree: prints the PCI bridges and functions of an inventory as a tree.

#include <algorithm>
#include <iterator>
#include <memory>

#include "database.h"
#include "failure.h"
#include "inventory.h"
#include "inventory_source.h"
#include "output_stream.h"
#include "pci_names.h"
#include "pci_topology.h"
#include "subcommand.h"
#include "topology_formats.h"

namespace {

struct tree_options {
    std::string file;
    std::string database;
    std::string format = "text";
};

bool is_on_command_line(const CLI::App& arguments, const std::string& option) {
    const std::vector<CLI::Option*>& given = arguments.parse_order();
    return std::find(given.begin(), given.end(), arguments.get_option(option)) != given.end();
}

inventory open(const CLI::App& arguments, const tree_options& options) {
    if (!is_on_command_line(arguments, "FILE")) {
        return inventory(options.database);
    }
    if (is_on_command_line(arguments, "--database")) {  // and not only in the environment
        throw failure("FILE and --database exclude each other; see 'zebdb-cds tree --help'");
    }
    return open_inventory(options.file);
}

inventory_table read(const inventory& from, const std::string& name) {
    return from.read(*std::find_if(std::begin(inventory_kinds), std::end(inventory_kinds),
                                   [&name](const inventory_kind& kind) { return kind.name == name; }));
}

int tree(const CLI::App& arguments, const tree_options& options) {
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

action define_tree(CLI::App& arguments) {
    const auto options = std::make_shared<tree_options>();
    arguments
        .add_option("FILE", options->file,
                    "An inventory: a CDS file or a database; - is standard input. Without it, that of --database")
        ->type_name("");
    arguments.add_option("--format", options->format, "text, for people; json, for programs")
        ->type_name("FORMAT")
        ->capture_default_str()
        ->check(CLI::IsMember({"text", "json"}).description(""));
    add_database_option(arguments, options->database);
    return [options, &arguments] { return tree(arguments, *options); };
}
