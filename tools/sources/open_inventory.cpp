// SPDX-License-Identifier: Apache-2.0

#include "sources/open_inventory.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <ios>
#include <istream>
#include <sstream>
#include <string>
#include <system_error>

#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "sources/cds_file.h"
#include "sources/file_format.h"
#include "sources/input_file.h"
#include "sources/inventory.h"
#include "sources/memory_inventory.h"

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

std::string content_of(const input_file& input) {
    std::ifstream file(input.path(), std::ios::binary);
    std::string content;
    char block[1 << 16];
    do {
        file.read(block, sizeof block);
        content.append(block, static_cast<std::size_t>(file.gcount()));
    } while (file);
    if (!input.read_error().empty()) {
        throw failure(input.read_error());
    }
    return content;
}

// What can be read only once. Throws failure with the cause alone, like those below.
inventory read_stream(const input_file& input, const std::string& title) {
    const std::string content = content_of(input);
    std::istringstream in(content);
    if (begins_as_database(in)) {
        return open_in_memory(content, title);
    }
    in.clear();
    in.seekg(0);
    cds_parser::document document;
    read_cds(in, input, document);
    return load_into_memory(document, title);
}

inventory read_file(const input_file& input, const std::string& title) {
    std::ifstream in(input.path());
    cds_parser::document document;
    read_cds(in, input, document);
    return load_into_memory(document, title);
}

}  // namespace

inventory open_inventory(const std::string& name) {
    if (is_database_file(name)) {
        return inventory(name, database_naming::argument);
    }
    const std::string title = input_title(name);
    try {
        const input_file input(name);
        return input.is_on_disk() ? read_file(input, title) : read_stream(input, title);
    } catch (const failure& cause) {
        throw failure("cannot read " + title + ": " + cause.what());
    }
}
