// SPDX-License-Identifier: Apache-2.0

#include "export/observation.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <ios>
#include <istream>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "console/time_text.h"
#include "console/utf8.h"
#include "explanation/explanation.h"
#include "rows/kinds.h"
#include "rows/redaction.h"
#include "rows/table.h"
#include "sources/cds_file.h"
#include "sources/file_status.h"
#include "sources/input_file.h"
#include "sources/source_record.h"

namespace fs = std::filesystem;

namespace {

// As it is written where names are UTF-8.
std::string server_named_by(const std::string& name) {
    const fs::path path(name);
    return repaired_utf8(path.extension() == ".xml" ? path.stem() : path.filename());
}

void refuse_broken_name(const fs::path& path) {
    const std::string name = path.filename();
    if (repaired_utf8(name) != name) {
        throw failure("its name is not UTF-8, so that it names no server; rename it, or name the server by --server");
    }
}

// What has no time of its own was seen now.
moment time_of(const struct stat& status) {
    const auto time = is_file(status) ? moment_of(status.st_mtim) : std::nullopt;
    return time.value_or(std::chrono::time_point_cast<std::chrono::microseconds>(std::chrono::system_clock::now()));
}

void refuse_impossible_time(const struct stat& status) {
    if (is_file(status) && !moment_of(status.st_mtim)) {
        throw failure("its time is not between the years 0 and 9999; set another, or give one by --at");
    }
}

// A file that there is no memory to open for is not one that cannot be read.
std::ifstream opened(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open() && errno == ENOMEM) {
        throw std::bad_alloc();
    }
    return file;
}

void note_digest(std::istream& in, source_record& source) {
    const bool is_open = in.good();
    const source_record digest = digest_of(in);
    if (is_open && !in.bad()) {
        source.bytes = digest.bytes;
        source.sha256 = digest.sha256;
    }
}

// What can be read only once.
void read_stream(const input_file& input, cds_parser::document& document, source_record& source) {
    const std::string content = input.read_all();
    std::istringstream in(content);
    if (source.sha256.empty()) {
        note_digest(in, source);
    }
    in.clear();
    in.seekg(0);
    read_cds(in, input, document);
}

void read_input(const std::string& name, cds_parser::document& document, source_record& source) {
    const input_file input(name);
    if (input.is_on_disk()) {
        std::ifstream in = opened(input.path());
        read_cds(in, input, document);
    } else {
        read_stream(input, document, source);
    }
}

std::vector<inventory_table> no_rows() {
    std::vector<inventory_table> tables;
    for (const inventory_kind* kind : kinds::all) {
        tables.push_back({kind, {}, {}});
    }
    return tables;
}

}  // namespace

observation observer::observe(const std::string& name) {
    observation seen = {};
    seen.server = options_.server.empty() ? server_named_by(name) : options_.server;
    seen.source.name = name;
    seen.tables = no_rows();
    cds_parser::document document;
    try {
        read(name, document, seen);
    } catch (const lack_of_memory&) {
        throw;
    } catch (const failure& cause) {
        seen.refusal = cause.what();
        return seen;
    }
    add_rows(document, seen);
    return seen;
}

// Throws failure with the cause alone.
void observer::read(const std::string& name, cds_parser::document& document, observation& seen) const {
    const struct stat before = status_of(name);
    seen.observed_at = options_.at.value_or(time_of(before));
    const bool is_named_file = is_file(before) && !is_standard_input(name);
    if (is_named_file) {
        std::ifstream file = opened(name);
        note_digest(file, seen.source);
    }
    if (options_.server.empty()) {
        refuse_broken_name(name);
    }
    if (!options_.at) {
        refuse_impossible_time(before);
    }
    read_input(name, document, seen.source);
    if (seen.source.sha256.empty() || (is_named_file && !is_unchanged(name, before))) {
        throw failure("it was changed while it was read; try again");
    }
}

void observer::add_rows(cds_parser::document& document, observation& seen) {
    seen.tables = rows_.load(document);
    seen.left_out = left_out_components(document, loader_, doubts_);
    if (options_.redact) {
        std::for_each(seen.tables.begin(), seen.tables.end(), [](inventory_table& table) { redact(table); });
    }
}
