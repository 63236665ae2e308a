// SPDX-License-Identifier: Apache-2.0

#include "sources/open_inventory.h"

#include <filesystem>
#include <fstream>
#include <ios>
#include <istream>
#include <memory>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>

#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "sources/cds_file.h"
#include "sources/file_format.h"
#include "sources/input_file.h"
#include "sources/inventory.h"
#include "sources/memory_inventory.h"
#include "sources/source_record.h"

namespace {

bool is_file(const std::string& name) {
    std::error_code ignored;
    return !is_standard_input(name) && std::filesystem::is_regular_file(name, ignored);
}

bool is_database_file(const std::string& name) {
    std::ifstream file;
    if (is_file(name)) {
        file.open(name, std::ios::binary);
    }
    return begins_as_database(file);
}

// Throws failure with the cause alone, like those below.
opened_source read_document(std::istream& in, const input_file& input, const std::string& title) {
    auto document = std::make_unique<cds_parser::document>();
    read_cds(in, input, *document);
    inventory rows = load_into_memory(*document, title);
    return {std::move(rows), std::move(document), {}};
}

// What can be read only once.
opened_source read_stream(const input_file& input, const std::string& title) {
    const std::string content = input.read_all();
    std::istringstream in(content);
    if (begins_as_database(in)) {
        return {open_in_memory(content, title), nullptr, {}};
    }
    in.clear();
    in.seekg(0);
    return read_document(in, input, title);
}

opened_source read_input(const input_file& input, const std::string& title) {
    if (!input.is_on_disk()) {
        return read_stream(input, title);
    }
    std::ifstream in(input.path());
    return read_document(in, input, title);
}

opened_source read_named(const std::string& name, bool with_digest) {
    const std::string title = input_title(name);
    try {
        const input_file input(name);
        opened_source opened = read_input(input, title);
        if (with_digest) {
            opened.file = digest_of(*input.read_as_it_lies());
        }
        return opened;
    } catch (const failure& cause) {
        throw failure("cannot read " + title + ": " + cause.what());
    }
}

}  // namespace

inventory open_inventory(const std::string& name) {
    return is_database_file(name) ? inventory(name, database_naming::argument) : read_named(name, false).rows;
}

opened_source open_source(const std::string& name) {
    opened_source opened = is_database_file(name)
                               ? opened_source{inventory(name, database_naming::argument), nullptr, {}}
                               : read_named(name, true);
    if (opened.file.sha256.empty()) {
        std::ifstream file(name, std::ios::binary);
        opened.file = digest_of(file);
    }
    opened.file.name = name;
    return opened;
}
