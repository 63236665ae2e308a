// SPDX-License-Identifier: Apache-2.0

/// What the subcommands that load a file have in common: what they show of the log, and what they say of the components
/// that left no row.
#ifndef TOOLS_SUBCOMMANDS_LOADING_H
#define TOOLS_SUBCOMMANDS_LOADING_H

#include <string>

#include <zebdb_cds_parser.h>

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

/// Watches a load for what it leaves out.
class left_out_watch {
public:
    explicit left_out_watch(const loading_options& options) : options_(options) {}

    /// To be shown the document when its rows are written. False, when that is strict, where there is something.
    bool accepts(const cds_parser::document& loaded);

    /// Why the document was not accepted, or empty.
    std::string refusal() const;

    /// A line for the summary; empty when nothing was left out.
    std::string line() const;

private:
    const loading_options& options_;
    std::string text_;  // what was left out, in words
};

#endif
