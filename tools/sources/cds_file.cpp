#include "sources/cds_file.h"

#include <cstring>
#include <fstream>

#include <sysipc.h>

#include "console/failure.h"
#include "sources/grammar_error.h"

namespace {

failure grammar_failure(const sysipc::exception& error, const input_file& input) {
    const auto line = input.can_be_read_again() ? line_of_grammar_error(input.path()) : std::nullopt;
    return failure((line ? "line " + std::to_string(*line) + ": " : "") + error.what());
}

}  // namespace

void read_cds_file(const std::string& name, cds_parser::document& document) {
    try {
        const input_file input(name);
        std::ifstream in(input.path());
        read_cds(in, input, document);
    } catch (const failure& cause) {
        throw failure("cannot read " + input_title(name) + ": " + cause.what());
    }
}

void read_cds(std::istream& in, const input_file& input, cds_parser::document& document) {
    bool is_cds = false;
    try {
        is_cds = document.parse(in);
    } catch (const cds_parser::node_error& error) {
        throw grammar_failure(error, input);
    } catch (const cds_parser::name_error& error) {
        throw grammar_failure(error, input);
    } catch (const sysipc::exception& error) {
        throw failure(input.read_error() == 0 ? error.what() : std::strerror(input.read_error()));
    }
    if (!is_cds) {
        throw failure("its root element is not 'component', so it is no CDS file");
    }
}
