// SPDX-License-Identifier: Apache-2.0

// zebdb-cds dump: prints the normalised text of a CDS file.

#include <unistd.h>

#include <ios>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>

#include <zebdb_cds_parser.h>

#include "console/output.h"
#include "console/output_stream.h"
#include "console/utf8.h"
#include "sources/cds_file.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

constexpr unsigned widest_indent = 16;
constexpr const char* round_trip =
    "Names and values are printed as they are, nothing is escaped. So a dump is a CDS file again, with the same dump, "
    "unless a name or a value holds markup (< or &) or a setting has no value. Only a terminal gets control characters "
    "as escapes.";

struct dump_options {
    std::string file;
    unsigned indent = 2;
};

void print_as_it_is(const cds_parser::document& document, const dump_options& options) {
    output_buffer buffer;
    std::ostream out(&buffer);
    out.exceptions(std::ios::badbit);  // what keeps a block from being printed is not lost in the stream
    document.dump(out, options.indent);
    buffer.finish();
}

int dump(const dump_options& options) {
    cds_parser::document document;
    read_cds_file(options.file, document);
    if (::isatty(STDOUT_FILENO) == 1) {
        std::ostringstream text;
        text.exceptions(std::ios::badbit);
        document.dump(text, options.indent);
        print(printable_lines(text.str()));
    } else {
        print_as_it_is(document, options);
    }
    return status_done;
}

}  // namespace

action define_dump(command_line& arguments) {
    const auto options = std::make_shared<dump_options>();
    add_cds_file_argument(arguments, options->file);
    arguments.number_option("--indent", "N", options->indent,
                            "Blanks for each level, 0 to " + std::to_string(widest_indent), widest_indent);
    arguments.remark(round_trip);
    return [options] { return dump(*options); };
}
