// zebdb-cds explain: tells for every component of a CDS file what row it leaves, or why it leaves none.

#include <algorithm>
#include <memory>

#include "cds_file.h"
#include "explanation_formats.h"
#include "output.h"
#include "subcommand.h"

namespace {

struct explain_options {
    std::string file;
    std::string format = "text";
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
    print(options.format == "json" ? explanation_json(explanations) : explanation_text(explanations));
    return status_done;
}

}  // namespace

action define_explain(CLI::App& arguments) {
    const auto options = std::make_shared<explain_options>();
    arguments.add_option("FILE", options->file, "The CDS file; - is standard input")->required()->type_name("");
    arguments.add_option("--format", options->format, "text, for people; json, for programs")
        ->type_name("FORMAT")
        ->capture_default_str()
        ->check(CLI::IsMember({"text", "json"}).description(""));
    arguments.add_flag("--all", options->all, "Tell about the components that there is nothing to record of, too");
    arguments.add_flag("--redact", options->redact, "Hide serial numbers and asset tags");
    return [options] { return explain(*options); };
}
