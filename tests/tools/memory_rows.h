// SPDX-License-Identifier: Apache-2.0

/// Inventories in memory whose rows a test writes itself.
#ifndef TESTS_TOOLS_MEMORY_ROWS_H
#define TESTS_TOOLS_MEMORY_ROWS_H

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "rows/kinds.h"
#include "rows/table.h"
#include "sources/inventory.h"
#include "sources/memory_database.h"
#include "sources/memory_inventory.h"

/// An inventory that is empty at first.
class memory_rows {
public:
    memory_rows() {
        sqlite3* opened = nullptr;
        sqlite3_open_v2(database.sqlite_name().c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
        connection_.reset(opened);
    }

    void execute(const std::string& sql) const {
        if (sqlite3_exec(connection_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sql + ": " + sqlite3_errmsg(connection_.get()));
        }
    }

    inventory read() const { return read_memory(database, "the inventory"); }

    memory_database database;

private:
    struct closer {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };

    std::unique_ptr<sqlite3, closer> connection_;
};

#endif
