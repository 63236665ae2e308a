// SPDX-License-Identifier: Apache-2.0

/// What a file is by its first bytes, whatever its name.
#ifndef TOOLS_SOURCES_FILE_FORMAT_H
#define TOOLS_SOURCES_FILE_FORMAT_H

#include <istream>
#include <string>

/// Whether that is a SQLite database. Reads from `in`.
bool begins_as_database(std::istream& in);

/// Whether that is what gzip packed. Reads from `in`.
bool begins_as_packed(std::istream& in);

/// Whether the file at `path` is one that gzip packed.
bool is_packed_file(const std::string& path);

#endif
