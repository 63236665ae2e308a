// zebdb-cds show: prints what an inventory database holds.

#include <algorithm>
#include <iterator>
#include <memory>

#include "console/failure.h"
#include "console/output.h"
#include "listing/listing_formats.h"
#include "sources/database_file.h"
#include "sources/inventory.h"
#include "subcommands/subcommand.h"

namespace {

struct format {
    const char* name;
    std::string (*write)(const std::vector<inventory_table>& tables);
};

constexpr format formats[] = {
    {"table", inventory_text},
    {"text", inventory_text},
    {"json", inventory_json},
    {"csv", inventory_csv},
};

struct show_options {
    std::string kind;  // empty for all
    std::string database;
    std::string format = "table";
    bool redact = false;
};

template <class Named, std::size_t Count>
std::vector<std::string> names_of(const Named (&all)[Count]) {
    std::vector<std::string> names;
    std::transform(std::begin(all), std::end(all), std::back_inserter(names),
                   [](const Named& each) { return each.name; });
    return names;
}

std::vector<inventory_table> read_tables(const show_options& options) {
    const inventory shown(options.database);
    std::vector<inventory_table> tables;
    for (const inventory_kind& kind : inventory_kinds) {
        if (options.kind.empty() || options.kind == kind.name) {
            tables.push_back(shown.read(kind));
        }
    }
    return tables;
}

int show(const show_options& options) {
    if (options.format == "csv" && options.kind.empty()) {
        throw failure("CSV holds one table: name processors, memory, bridges or devices; see 'zebdb-cds show --help'");
    }
    std::vector<inventory_table> tables = read_tables(options);
    if (options.redact) {
        std::for_each(tables.begin(), tables.end(), redact);
    }
    const auto chosen = std::find_if(std::begin(formats), std::end(formats),
                                     [&options](const format& each) { return each.name == options.format; });
    print(chosen->write(tables));
    return status_done;
}

}  // namespace

action define_show(command_line& arguments) {
    const auto options = std::make_shared<show_options>();
    arguments.optional_argument("KIND", options->kind,
                                "processors, memory, bridges or devices; all of them if none is named",
                                names_of(inventory_kinds));
    arguments.format_option(options->format, "table, for people; json or csv, for programs", names_of(formats));
    add_redact_flag(arguments, options->redact);
    add_database_option(arguments, options->database);
    return [options] { return show(*options); };
}
