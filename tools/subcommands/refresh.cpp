// SPDX-License-Identifier: Apache-2.0

// zebdb-cds refresh: takes the inventory to what a CDS file describes and says what changed.

#include <iomanip>
#include <ios>
#include <memory>
#include <sstream>
#include <string>

#include <inventory_service.h>
#include <zebdb_cds_parser.h>

#include "change_detection/missing_places.h"
#include "change_detection/private_view.h"
#include "change_detection/service.h"
#include "console/failure.h"
#include "console/output.h"
#include "console/progress.h"
#include "inventory/refresh.h"
#include "sources/cds_file.h"
#include "sources/database_file.h"
#include "sources/input_file.h"
#include "sources/library_log.h"
#include "sources/refusal.h"
#include "sources/source_record.h"
#include "subcommands/command_line.h"
#include "subcommands/left_out_watch.h"
#include "subcommands/loading_options.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

struct refresh_options {
    loading_options loading;
    std::string database;
    std::string root;
    unsigned aim_argument = 0;
};

std::string line(const char* inventory, const inventory_mark& before, const inventory_mark& now) {
    std::ostringstream text;
    text << "  " << std::left << std::setw(18) << inventory << std::setw(11)
         << (now.sequence == before.sequence ? "unchanged" : "changed") << "sequence " << now.sequence << '\n';
    return text.str();
}

std::string report(const refresh_options& options, const inventory_marks& before, const inventory_marks& now,
                   const left_out_watch& watch) {
    std::string text = "Refreshed " + in_quotes(options.database) + " from " + input_title(options.loading.file) +
                       ":\n" + line("system inventory", before.system, now.system) +
                       line("PCI inventory", before.pci, now.pci);
    if (digests_failed(before, now)) {
        text += "  The digest script failed: every inventory that had a digest counts as changed.\n";
    }
    if (!watch.line().empty()) {
        text += watch.line() + '\n';
    }
    return text;
}

// With the rows goes a note of what they are from. Throws failure with the cause alone.
void run_refresh(const input_file& input, const refresh_options& options, left_out_watch& watch) {
    progress line(input.status());
    const library_log log(line, display_for(options.loading));
    const auto accepts = [&](const cds_parser::document& loaded) {
        return watch.accepts(loaded) && write_source(get_dmdb_handle(), source_of(options.loading.file, input));
    };
    if (refresh_inventory(input.path().c_str(), options.aim_argument, accepts) != 0) {
        throw failure(watch.refusal().empty() ? cause_of_refusal(input, log) : watch.refusal());
    }
}

// The service makes the database before the file is read. Throws failure with the cause alone.
void refuse_before_a_database_is_made(const input_file& input, left_out_watch& watch) {
    if (!input.is_on_disk()) {
        return;
    }
    cds_parser::document document;
    read_cds(*input.read_again(), input, document);
    if (!watch.accepts(document)) {
        throw failure(watch.refusal());
    }
}

// What there was before. Throws failure with the cause alone.
inventory_marks refresh_database(const refresh_options& options, left_out_watch& watch) {
    const input_file input(options.loading.file);
    if (is_to_be_made(options.database)) {
        refuse_before_a_database_is_made(input, watch);
    }
    refuse_foreign_database(options.database);
    inventory_marks before = read_marks(open_service(options.database));
    run_refresh(input, options, watch);
    return before;
}

// A view that --root made has all of them.
void complain_of_missing_places(const refresh_options& options) {
    if (const std::string missing = missing_places(); !missing.empty()) {
        complain("what a controller has is missing here or denied: " + missing + "; try 'zebdb-cds refresh " +
                 as_shell_word(options.loading.file) + " --root DIR'");
    }
}

int refresh(const refresh_options& options) {
    enter_private_view(options.root, {options.loading.file, options.database});
    left_out_watch watch(options.loading);
    inventory_marks before;
    try {
        before = refresh_database(options, watch);
    } catch (const failure& problem) {
        throw failure("cannot refresh " + in_quotes(options.database) + " from " + input_title(options.loading.file) +
                      ": " + problem.what());
    }
    complain_of_foreign_marker();
    complain_of_missing_places(options);
    try {
        print(report(options, before, read_marks(open_service(options.database)), watch));
    } catch (const failure& problem) {
        throw failure(std::string(problem.what()) + "; the rows of " + input_title(options.loading.file) + " are in " +
                      in_quotes(options.database) + " all the same");
    }
    return status_done;
}

}  // namespace

action define_refresh(command_line& arguments) {
    const auto options = std::make_shared<refresh_options>();
    add_loading_options(arguments, options->loading);
    arguments.number_option("--aim", "NUMBER", options->aim_argument, "The number that the adapter loader is given");
    add_database_option(arguments, options->database);
    add_root_option(arguments, options->root);
    return [options] { return refresh(*options); };
}
