// SPDX-License-Identifier: Apache-2.0

// zebdb-cds explain: tells what of a CDS file is not in the inventory, and why.

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "console/output.h"
#include "console/text_table.h"
#include "console/wrapping.h"
#include "explanation/explanation.h"
#include "explanation/explanation_formats.h"
#include "sources/cds_file.h"
#include "sources/input_file.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

struct explain_options;
using explanation_writer = std::string (*)(const std::vector<explanation>& explanations,
                                           const explain_options& options);

std::string text_of(const std::vector<explanation>& explanations, const explain_options& options);

std::string json_of(const std::vector<explanation>& explanations, const explain_options&) {
    return explanation_json(explanations);
}

struct explain_options {
    std::string file;
    output_format<explanation_writer> format = text_or_json<explanation_writer>(text_of, json_of);
    bool all = false;
    std::string part;  // empty for the whole file
    bool verbose = false;
    bool redact = false;
};

std::string lines_of(const std::vector<explanation>& explanations, const explain_options& options,
                     const text_style& style) {
    const row_columns columns = options.verbose ? row_columns::named : row_columns::hidden;
    if (!options.part.empty()) {
        return components_text(explanations, columns, style);
    }
    return options.all ? components_text(explanations, columns, style) + '\n' + totals_text(explanations)
                       : problems_text(explanations, style);
}

std::string text_of(const std::vector<explanation>& explanations, const explain_options& options) {
    const text_style style = output_style();
    return fitted_lines(lines_of(explanations, options, style), style.width);
}

void keep_part(std::vector<explanation>& explanations, const std::string& name) {
    explanations.erase(std::remove_if(explanations.begin(), explanations.end(),
                                      [&name](const explanation& told) { return !is_named(told, name); }),
                       explanations.end());
}

int explain(const explain_options& options) {
    cds_parser::document document;
    read_cds_file(options.file, document);
    std::vector<explanation> explanations = explanations_of(document, options.all || !options.part.empty());
    if (!options.part.empty()) {
        keep_part(explanations, options.part);
    }
    if (!options.part.empty() && explanations.empty()) {
        complain("there is no component " + in_quotes(options.part) + " in " + input_title(options.file) +
                 "; --all lists them with their addresses, locators and paths");
        return status_no;
    }
    if (options.redact) {
        std::for_each(explanations.begin(), explanations.end(), [](explanation& told) { redact(told); });
    }
    print(options.format.writer()(explanations, options));
    return status_done;
}

}  // namespace

action define_explain(command_line& arguments) {
    const auto options = std::make_shared<explain_options>();
    add_cds_file_argument(arguments, options->file);
    arguments.flag("--all", options->all, "Tell about every component, also about those that nothing is missing of");
    arguments.text_option("--part", "NAME", options->part,
                          "Tell about one component: a PCI address, a locator or a path");
    arguments.exclude("--all", "--part");
    arguments.flag("-v,--verbose", options->verbose, "Name the columns of each row");
    options->format.add_option(arguments);
    add_redact_flag(arguments, options->redact);
    return [options] { return explain(*options); };
}
