// SPDX-License-Identifier: Apache-2.0

/// The file that an inventory database is.
#ifndef TOOLS_SOURCES_DATABASE_FILE_H
#define TOOLS_SOURCES_DATABASE_FILE_H

#include <string>

#include "sources/memory_database.h"

/// The name by which SQLite takes `path` for a file, whatever characters it begins with.
std::string sqlite_name(const std::string& path);

/// Throws failure when there is no database to read at `path`.
void require_database_file(const std::string& path);

/// Throws failure when the database at `path` is another program's: it has tables, and none of an inventory. One that
/// cannot be read, or is still to be made, is nobody's. What a writer left half done in it stays as it is.
void refuse_foreign_database(const std::string& path);

/// Throws failure when there is no database with an inventory at `path`. Whoever opens it to write would make one.
void require_inventory(const std::string& path);

/// Undoes what a writer that was killed, or that ran out of disk, left half done in the database at `path`. Whoever
/// opens the database next does the same, but a read-only connection cannot.
void roll_back_interrupted_write(const std::string& path);

/// `problem` and what to do about it, where there is something to do about a failure with that code of SQLite.
std::string with_advice(int code, const std::string& problem);

/// Whether the database at `path` is still to be made: no file is there, or an empty one. Throws failure when none can
/// be made.
bool is_to_be_made(const std::string& path);

/// Makes the database at `path` of all that is in `source`, with one commit, so that nobody finds a part of it; false,
/// and nothing is done, when the file there is no longer empty. It stays when this fails, since others may have opened
/// it by then. Throws failure with the cause alone.
bool make_database(const std::string& path, const memory_database& source);

#endif
