// SPDX-License-Identifier: Apache-2.0

#include "sources/cds_folder.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "console/failure.h"

namespace fs = std::filesystem;

namespace {

// What cannot be looked at counts as a file: to read it will tell why.
bool is_cds_file(const fs::path& path) {
    std::error_code ignored;
    const fs::file_type type = fs::status(path, ignored).type();
    return path.extension() == ".xml" && path.filename().native().front() != '.' &&
           (type == fs::file_type::regular || type == fs::file_type::not_found || type == fs::file_type::none);
}

}  // namespace

bool is_folder(const std::string& name) {
    std::error_code ignored;
    return fs::is_directory(name, ignored);
}

std::vector<std::string> cds_files_in(const std::string& folder) {
    std::error_code problem;
    std::vector<std::string> files;
    for (fs::directory_iterator entry(folder, problem), end; entry != end; entry.increment(problem)) {
        if (is_cds_file(entry->path())) {
            files.push_back(entry->path().native());
        }
    }
    if (problem) {
        throw failure(problem.message());
    }
    std::sort(files.begin(), files.end());
    return files;
}
