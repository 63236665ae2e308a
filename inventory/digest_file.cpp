// SPDX-License-Identifier: Apache-2.0

// Digests are computed by sha384sum through the shell; commands and paths are cut to their buffers.

#include "digest_file.h"

#include <stdio.h>
#include <unistd.h>
#include <vonk_log.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

constexpr std::size_t buffer_size = 128;

bool exists(const char* path) {
    return path != nullptr && access(path, F_OK) == 0;
}

// The first line without its last character, whatever that is: a line without a line end loses a character of text.
std::string first_line(std::FILE* file) {
    char* line = nullptr;
    std::size_t capacity = 0;
    const ssize_t length = getline(&line, &capacity, file);
    const std::unique_ptr<char, decltype(&std::free)> owner(line, std::free);
    if (length <= 0) {
        return {};
    }
    return {line, static_cast<std::size_t>(length) - 1};
}

bool read_current_digest(const char* path, std::string& digest) {
    char command[buffer_size];
    std::snprintf(command, sizeof command, "sha384sum %s | awk '{ print $1 }'", path);
    std::FILE* pipe = popen(command, "r");
    if (pipe == nullptr) {
        vonk_log::logErr("%s: popen %s failed", "check_file_digest", command);
        return false;
    }
    digest = first_line(pipe);
    pclose(pipe);
    return true;
}

bool read_saved_digest(const char* path, std::string& digest) {
    char digest_path[buffer_size];
    std::snprintf(digest_path, sizeof digest_path, "%s.digest", path);
    std::FILE* file = std::fopen(digest_path, "r");
    if (file == nullptr) {
        vonk_log::logErr("%s: open %s failed", "check_file_digest", digest_path);
        return false;
    }
    digest = first_line(file);
    std::fclose(file);
    return true;
}

}  // namespace

bool check_file_digest(const char* path, int* changed) {
    if (!exists(path)) {
        vonk_log::logErr("%s: %s does not exist", "check_file_digest", path == nullptr ? "(null)" : path);
        return false;
    }
    std::string current;
    std::string saved;
    if (!read_current_digest(path, current) || !read_saved_digest(path, saved)) {
        return false;
    }
    *changed = current == saved ? 0 : 1;
    if (*changed != 0) {
        vonk_log::logInfo("%s: %s digest [%s] does not match saved value [%s]", "check_file_digest", path,
                          current.c_str(), saved.c_str());
    }
    return true;
}

bool save_file_digest(const char* path) {
    if (!exists(path)) {
        return false;
    }
    char command[buffer_size];
    std::snprintf(command, sizeof command, "sha384sum %s | awk '{ print $1 }' > %s.digest", path, path);
    if (std::system(command) != 0) {
        vonk_log::logErr("%s: generating %s.digest failed!", "save_pci_digest", path);
        return false;
    }
    return true;
}
