// SPDX-License-Identifier: Apache-2.0

// zebdb-cds refresh: takes the inventory to what a CDS file describes and says what changed.

#include <iomanip>
#include <ios>
#include <memory>
#include <sstream>
#include <string>

#include <zebdb_cds_parser.h>

#include "change_detection/private_view.h"
#include "change_detection/service.h"
#include "console/failure.h"
#include "console/output.h"
#include "console/progress.h"
#include "sources/cds_file.h"
#include "sources/database_file.h"
#include "sources/input_file.h"
#include "sources/library_log.h"
#include "sources/refusal.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

struct refresh_options {
    std::string file;
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

std::string report(const refresh_options& options, const inventory_marks& before, const inventory_marks& now) {
    std::string text = "Refreshed " + in_quotes(options.database) + " from " + input_title(options.file) + ":\n" +
                       line("system inventory", before.system, now.system) + line("PCI inventory", before.pci, now.pci);
    if (digests_failed(before, now)) {
        text += "  The digest script failed: every inventory that had a digest counts as changed.\n";
    }
    return text;
}

// Throws failure with the cause alone.
void run_refresh(const input_file& input, unsigned aim_argument) {
    progress line(input.status());
    const library_log log(line);
    if (parse_pci(input.path().c_str(), aim_argument) != 0) {
        throw failure(cause_of_refusal(input, log));
    }
}

// The service makes the database before the file is read. Throws failure with the cause alone.
void refuse_before_a_database_is_made(const input_file& input) {
    if (input.is_on_disk()) {
        cds_parser::document document;
        read_cds(*input.read_again(), input, document);
    }
}

// What there was before. Throws failure with the cause alone.
inventory_marks refresh_database(const refresh_options& options) {
    const input_file input(options.file);
    if (is_to_be_made(options.database)) {
        refuse_before_a_database_is_made(input);
    }
    refuse_foreign_database(options.database);
    inventory_marks before = read_marks(open_service(options.database));
    run_refresh(input, options.aim_argument);
    return before;
}

int refresh(const refresh_options& options) {
    enter_private_view(options.root, {options.file, options.database});
    inventory_marks before;
    try {
        before = refresh_database(options);
    } catch (const failure& problem) {
        throw failure("cannot refresh " + in_quotes(options.database) + " from " + input_title(options.file) + ": " +
                      problem.what());
    }
    try {
        print(report(options, before, read_marks(open_service(options.database))));
    } catch (const failure& problem) {
        throw failure(std::string(problem.what()) + "; the rows of " + input_title(options.file) + " are in " +
                      in_quotes(options.database) + " all the same");
    }
    return status_done;
}

}  // namespace

action define_refresh(command_line& arguments) {
    const auto options = std::make_shared<refresh_options>();
    add_cds_file_argument(arguments, options->file);
    arguments.number_option("--aim", "NUMBER", options->aim_argument, "The number that the adapter loader is given");
    add_database_option(arguments, options->database);
    add_root_option(arguments, options->root);
    return [options] { return refresh(*options); };
}
