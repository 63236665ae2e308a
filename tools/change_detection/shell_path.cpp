// SPDX-License-Identifier: Apache-2.0

#include "change_detection/shell_path.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include "console/failure.h"

namespace {

// Letters, digits and these mean themselves to a shell; so does every byte of a character outside ASCII.
constexpr const char* plain_marks = "/._-+,:@%=";

bool is_plain(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x80 || (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= 'a' && byte <= 'z') || (byte != 0 && std::strchr(plain_marks, byte) != nullptr);
}

std::string named(char character) {
    if (character == ' ') {
        return "a blank";
    }
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F ? "a control character" : std::string("the character ") + character;
}

// How the same file may be named by a path that is short enough.
std::string shorter_path(const std::string& path, std::size_t longest) {
    const std::size_t slash = path.rfind('/');
    const std::string name = path.substr(slash + 1);  // all of it where there is no slash
    if (slash == 0 || name.empty() || name.size() > longest) {
        return "name the file by a shorter path";
    }
    return "go to its folder with 'cd " + path.substr(0, slash) + "' and name it '" + name + "'";
}

}  // namespace

void require_shell_path(const std::string& path, std::size_t longest) {
    const auto special = std::find_if_not(path.begin(), path.end(), is_plain);
    if (special != path.end()) {
        throw failure("refused path '" + path + "': it goes to a shell as it is and holds " + named(*special) +
                      "; rename the file or name it by another path");
    }
    if (path.empty() || path.front() == '-') {
        throw failure("refused path '" + path + "': sha384sum would not take it for a file; put ./ in front");
    }
    if (path.size() > longest) {
        throw failure("refused path '" + path + "': it is " + std::to_string(path.size()) + " bytes long, and beyond " +
                      std::to_string(longest) + " the library cuts the command that it stands in; " +
                      shorter_path(path, longest));
    }
    if (::access(path.c_str(), R_OK) != 0) {
        throw failure("cannot read '" + path + "': " + std::strerror(errno));
    }
    std::error_code ignored;
    const std::filesystem::file_status file = std::filesystem::status(path, ignored);
    if (std::filesystem::is_directory(file)) {
        throw failure("cannot read '" + path + "': it is a folder; name a file");
    }
    if (!std::filesystem::is_regular_file(file)) {
        throw failure("cannot read '" + path + "': it is a pipe or a device, which may have no end; name a file");
    }
}
