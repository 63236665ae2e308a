// SPDX-License-Identifier: Apache-2.0

/// The options of the subcommands that load a file, and what they show of the log.
#ifndef TOOLS_SUBCOMMANDS_LOADING_OPTIONS_H
#define TOOLS_SUBCOMMANDS_LOADING_OPTIONS_H

#include <string>

#include "sources/library_log.h"
#include "subcommands/command_line.h"

struct loading_options {
    std::string file;
    bool strict = false;
    bool quiet = false;
    bool verbose = false;
};

/// Declares FILE, --strict, --quiet and --verbose.
void add_loading_options(command_line& arguments, loading_options& options);

/// Which lines of the log are shown. On a terminal they are for somebody who looks on, else for a record.
log_display display_for(const loading_options& options);

/// Says on standard error where the marker of a load is somebody else's.
void complain_of_foreign_marker();

#endif
