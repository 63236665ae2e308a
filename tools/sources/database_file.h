// SPDX-License-Identifier: Apache-2.0

/// The file that an inventory database is.
#ifndef TOOLS_SOURCES_DATABASE_FILE_H
#define TOOLS_SOURCES_DATABASE_FILE_H

#include <sys/types.h>

#include <string>

/// Which file stands at a path.
struct file_identity {
    dev_t device = 0;
    ino_t number = 0;  ///< 0 for none
};

/// The name by which SQLite takes `path` for a file, whatever characters it begins with.
std::string sqlite_name(const std::string& path);

/// Throws failure when there is no database to read at `path`.
void require_database_file(const std::string& path);

/// Throws failure when the database at `path` is another program's: it has tables, and none of an inventory. One that
/// cannot be read, or is still to be made, is nobody's.
void refuse_foreign_database(const std::string& path);

/// Throws failure when there is no database with an inventory at `path`. Whoever opens it to write would make one.
void require_inventory(const std::string& path);

/// Undoes what a writer that was killed, or that ran out of disk, left half done in the database at `path`. Whoever
/// opens the database next does the same, but a read-only connection cannot.
void roll_back_interrupted_write(const std::string& path);

/// `problem` and what to do about it, where there is something to do about a failure with that code of SQLite.
std::string with_advice(int code, const std::string& problem);

/// Makes the file of a database that is about to be filled, when there is none. Unless it is kept, a file that was made
/// is taken away again with its journal; but not where another program has filled it meanwhile, unless this one is
/// interrupted. One at a time; no connection of this process may be in a transaction on it then.
class new_database_file {
public:
    /// Throws failure when there is no file at `path` and none can be made.
    explicit new_database_file(const std::string& path);
    ~new_database_file();
    new_database_file(const new_database_file&) = delete;
    new_database_file& operator=(const new_database_file&) = delete;

    void keep();

    /// Whether another file, or none, stands there by now: another program has taken it away.
    bool was_replaced() const;

private:
    void take_away();

    std::string path_;
    file_identity identity_;
    bool made_ = false;
};

#endif
