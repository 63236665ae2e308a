// zebdb-cds dump: prints the normalised text of a CDS file.

#include <memory>
#include <ostream>

#include <zebdb_cds_parser.h>

#include "cds_file.h"
#include "output_stream.h"
#include "subcommand.h"

namespace {

constexpr unsigned widest_indent = 16;
constexpr const char* round_trip =
    "Names and values are printed as they are, nothing is escaped. So a dump is a CDS file again,\n"
    "with the same dump, unless a name or a value holds markup (< or &) or a setting has no value.";

struct dump_options {
    std::string file;
    unsigned indent = 2;
};

int dump(const dump_options& options) {
    cds_parser::document document;
    read_cds_file(options.file, document);
    output_buffer buffer;
    std::ostream out(&buffer);
    out.exceptions(std::ios::badbit);  // what keeps a block from being printed is not lost in the stream
    document.dump(out, options.indent);
    buffer.finish();
    return status_done;
}

}  // namespace

action define_dump(CLI::App& arguments) {
    const auto options = std::make_shared<dump_options>();
    arguments.add_option("FILE", options->file, "The CDS file; - is standard input")->required()->type_name("");
    arguments.add_option("--indent", options->indent, "Blanks for each level, 0 to " + std::to_string(widest_indent))
        ->type_name("N")
        ->capture_default_str()
        ->check(CLI::Range(0U, widest_indent).description(""));
    arguments.footer(std::string(round_trip) + "\n\n" + arguments.get_footer());
    return [options] { return dump(*options); };
}
