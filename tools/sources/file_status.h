// SPDX-License-Identifier: Apache-2.0

/// What the system tells of a file without opening it.
#ifndef TOOLS_SOURCES_FILE_STATUS_H
#define TOOLS_SOURCES_FILE_STATUS_H

#include <sys/stat.h>

#include <string>

/// Of what the name stands for, "-" for standard input; of no type where nothing can be told.
struct stat status_of(const std::string& name);

/// Whether it is a file and no pipe, folder or device.
bool is_file(const struct stat& status);

/// Whether the name still stands for the same file, of the same size and time, that it was.
bool is_unchanged(const std::string& name, const struct stat& before);

#endif
