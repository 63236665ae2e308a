// SPDX-License-Identifier: Apache-2.0

#include "sources/file_format.h"

#include <cstring>
#include <fstream>
#include <ios>
#include <istream>
#include <string>

namespace {

// With the 0 behind it.
constexpr char database_magic[] = "SQLite format 3";

constexpr char gzip_magic[] = {'\x1f', '\x8b'};

template <std::size_t Size>
bool begins_with(std::istream& in, const char (&magic)[Size]) {
    char begin[Size] = {};
    in.read(begin, sizeof begin);
    return in.gcount() == sizeof begin && std::memcmp(begin, magic, sizeof begin) == 0;
}

}  // namespace

bool begins_as_database(std::istream& in) {
    return begins_with(in, database_magic);
}

bool begins_as_packed(std::istream& in) {
    return begins_with(in, gzip_magic);
}

bool is_packed_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return begins_as_packed(file);
}
