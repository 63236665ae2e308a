// SPDX-License-Identifier: Apache-2.0

/// The project's own files.
#ifndef TESTS_SOURCES_PROJECT_FILES_H
#define TESTS_SOURCES_PROJECT_FILES_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// What a file holds; `path` is below the root of the project.
inline std::string text_of(const std::string& path) {
    std::ifstream file(std::filesystem::path(SOURCE_DIR) / path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The files in a folder and the folders below it, by their paths below the root, in no order.
inline std::vector<std::string> files_below(const std::string& folder) {
    std::vector<std::string> files;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(std::filesystem::path(SOURCE_DIR) / folder)) {
        if (entry.is_regular_file()) {
            files.push_back(std::filesystem::relative(entry.path(), SOURCE_DIR));
        }
    }
    return files;
}

#endif
