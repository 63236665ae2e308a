// SPDX-License-Identifier: Apache-2.0

#include "subcommands/loading_options.h"

#include <string>

#include "change_detection/missing_places.h"
#include "console/output.h"
#include "sources/library_log.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"

void add_loading_options(command_line& arguments, loading_options& options) {
    add_cds_file_argument(arguments, options.file);
    arguments.flag("--strict", options.strict,
                   "Refuse a file of which a component that should leave a row leaves none");
    arguments.flag("-q,--quiet", options.quiet, "Show no lines of the log but errors");
    arguments.flag("-v,--verbose", options.verbose, "Show all lines of the log, also on a terminal");
    arguments.exclude("--quiet", "--verbose");
}

log_display display_for(const loading_options& options) {
    if (options.quiet) {
        return log_display::errors;
    }
    return options.verbose || !log_goes_to_a_terminal() ? log_display::shown : log_display::problems;
}

void complain_of_foreign_marker() {
    if (const std::string problem = foreign_marker(); !problem.empty()) {
        complain(problem);
    }
}
