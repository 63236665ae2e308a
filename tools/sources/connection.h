// SPDX-License-Identifier: Apache-2.0

/// A connection to a database by SQLite itself.
#ifndef TOOLS_SOURCES_CONNECTION_H
#define TOOLS_SOURCES_CONNECTION_H

#include <sqlite3.h>

#include <memory>

struct connection_closer {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};
using connection_ptr = std::unique_ptr<sqlite3, connection_closer>;

#endif
