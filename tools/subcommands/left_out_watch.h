// SPDX-License-Identifier: Apache-2.0

/// What a load says of the components that left no row, and whether it is refused for them.
#ifndef TOOLS_SUBCOMMANDS_LEFT_OUT_WATCH_H
#define TOOLS_SUBCOMMANDS_LEFT_OUT_WATCH_H

#include <string>

#include <zebdb_cds_parser.h>

#include "subcommands/loading_options.h"

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
