// SPDX-License-Identifier: Apache-2.0

#include "sources/cds_file.h"

#include <algorithm>
#include <fstream>
#include <istream>
#include <string>

#include <sysipc.h>
#include <sysxml_workstation.h>
#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "sources/file_format.h"
#include "sources/grammar_error.h"
#include "sources/input_file.h"

namespace {

failure grammar_failure(const sysipc::exception& error, const input_file& input) {
    const auto found = find_grammar_error(*input.read_again());
    const bool has_line = found && found->line && input.is_on_disk();
    const bool has_no_name = found && found->is_about_no_element;
    return failure((has_line ? "line " + std::to_string(*found->line) + ": " : "") +
                   (has_no_name ? "Unexpected node without a name, as a CDATA section is" : error.what()));
}

// What the XML library says may take two lines.
failure xml_failure(const sysipc::exception& error, const input_file& input) {
    if (begins_as_database(*input.read_again())) {
        return failure("it is a database and no CDS file; 'zebdb-cds show', 'tree' and 'diff' take one");
    }
    if (begins_as_packed(*input.read_again())) {
        return failure("it was packed by gzip twice; unpack it with gzip -d");
    }
    std::string text = error.what();
    std::replace(text.begin(), text.end(), '\n', ' ');
    return failure(text);
}

[[noreturn]] void throw_problem(const sysipc::exception& error, const input_file& input) {
    if (input.lacked_memory()) {
        throw lack_of_memory(input.read_error());
    }
    if (!input.read_error().empty()) {
        throw failure(input.read_error());
    }
    if (dynamic_cast<const sysxml::memory_error*>(&error) != nullptr) {
        throw lack_of_memory(xml_failure(error, input).what());
    }
    throw xml_failure(error, input);
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
        throw_problem(error, input);
    }
    if (!is_cds) {
        throw failure("its root element is not 'component', so it is no CDS file");
    }
}
