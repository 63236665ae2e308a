// SPDX-License-Identifier: Apache-2.0

/// An inventory that nobody keeps.
#ifndef TOOLS_SOURCES_MEMORY_DATABASE_H
#define TOOLS_SOURCES_MEMORY_DATABASE_H

#include <memory>
#include <string>

#include <zeb_db_workstation.h>

/// An empty inventory database in memory; it is gone with the object.
class memory_database {
public:
    /// Throws failure when there is not enough memory.
    memory_database();

    /// For the library to write to.
    _zeb_db_handle_t* handle() const { return handle_.get(); }

    /// What SQLite calls it, for who reads it.
    const std::string& sqlite_name() const { return sqlite_name_; }

private:
    struct closer {
        void operator()(_zeb_db_handle_t* handle) const { zeb_db_close(handle); }
    };

    std::string sqlite_name_;
    std::unique_ptr<_zeb_db_handle_t, closer> handle_;
};

#endif
