// SPDX-License-Identifier: Apache-2.0

// zebdb-cds fields: prints what the columns of an inventory mean.

#include <memory>
#include <string>

#include "console/output.h"
#include "console/text_table.h"
#include "console/wrapping.h"
#include "listing/fields_formats.h"
#include "rows/kinds.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

std::string text_of(const kind_list& kinds) {
    const text_style style = output_style();
    return fitted_lines(fields_text(kinds, style), style.width);
}

struct fields_options {
    std::string kind;  // empty for all
    output_format<decltype(&fields_json)> format = {
        "text, for people; json, for programs; markdown, for a page about all kinds",
        {{"text", text_of}, {"json", fields_json}, {"markdown", fields_page}},
    };
};

int fields(const fields_options& options) {
    kind_list shown;
    for (const inventory_kind* kind : kinds::all) {
        if (options.kind.empty() || options.kind == kind->name) {
            shown.push_back(kind);
        }
    }
    print(options.format.writer()(shown));
    return status_done;
}

}  // namespace

action define_fields(command_line& arguments) {
    const auto options = std::make_shared<fields_options>();
    add_kind_argument(arguments, options->kind);
    options->format.add_option(arguments);
    return [options] { return fields(*options); };
}
