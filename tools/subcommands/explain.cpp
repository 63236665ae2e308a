// SPDX-License-Identifier: Apache-2.0

// zebdb-cds explain: tells for every component of a CDS file what row it leaves, or why it leaves none.

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "console/output.h"
#include "console/text_table.h"
#include "explanation/explanation.h"
#include "explanation/explanation_formats.h"
#include "sources/cds_file.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

std::string text_of(const std::vector<explanation>& explanations) {
    return explanation_text(explanations, output_style());
}

struct explain_options {
    std::string file;
    output_format<decltype(&explanation_json)> format = text_or_json(text_of, explanation_json);
    bool all = false;
    bool redact = false;
};

int explain(const explain_options& options) {
    cds_parser::document document;
    read_cds_file(options.file, document);
    std::vector<explanation> explanations = explanations_of(document, options.all);
    if (options.redact) {
        std::for_each(explanations.begin(), explanations.end(), [](explanation& told) { redact(told); });
    }
    print(options.format.writer()(explanations));
    return status_done;
}

}  // namespace

action define_explain(command_line& arguments) {
    const auto options = std::make_shared<explain_options>();
    add_cds_file_argument(arguments, options->file);
    options->format.add_option(arguments);
    arguments.flag("--all", options->all, "Tell about the components that there is nothing to record of, too");
    add_redact_flag(arguments, options->redact);
    return [options] { return explain(*options); };
}
