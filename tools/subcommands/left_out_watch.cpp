// SPDX-License-Identifier: Apache-2.0

#include "subcommands/left_out_watch.h"

#include <string>

#include <zebdb_cds_parser.h>

#include "console/output.h"
#include "explanation/left_out.h"
#include "explanation/left_out_phrases.h"

bool left_out_watch::accepts(const cds_parser::document& loaded) {
    text_ = left_out_text(left_out_of(loaded));
    return text_.empty() || !options_.strict;
}

std::string left_out_watch::refusal() const {
    return options_.strict ? line() : "";
}

std::string left_out_watch::line() const {
    return text_.empty() ? "" : text_ + "; zebdb-cds explain " + as_shell_word(options_.file) + " tells which";
}
