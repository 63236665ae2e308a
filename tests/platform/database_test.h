// SPDX-License-Identifier: Apache-2.0

#ifndef TESTS_PLATFORM_DATABASE_TEST_H
#define TESTS_PLATFORM_DATABASE_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <zeb_db_workstation.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/captured_log.h"
#include "support/scratch_folder.h"
#include "support/sqlite_database.h"

struct handle_deleter {
    void operator()(_zeb_db_handle_t* handle) const { zeb_db_close(handle); }
};
using handle_ptr = std::unique_ptr<_zeb_db_handle_t, handle_deleter>;

struct content_deleter {
    void operator()(zeb_db_content_values_t* content) const { zeb_db_free_content_values(content); }
};
using content_ptr = std::unique_ptr<zeb_db_content_values_t, content_deleter>;

struct result_deleter {
    void operator()(zeb_db_result_t* result) const { zeb_db_free_result(result); }
};
using result_ptr = std::unique_ptr<zeb_db_result_t, result_deleter>;

inline content_ptr new_content() {
    return content_ptr(zeb_db_get_content_values());
}

/// An inventory database in a folder of its own, and the SQLite connections behind its handles.
class DatabaseTest : public testing::Test {
protected:
    DatabaseTest() : handle(open()), connection(newest_connection_) {}

    /// One more handle on the same database; `connection_of_newest()` is the connection behind it.
    handle_ptr open() {
        _zeb_db_handle_t* opened = nullptr;
        newest_connection_ = connection_opened_by([&] { EXPECT_EQ(zeb_db_open(path.c_str(), &opened), 0); });
        return handle_ptr(opened);
    }
    static sqlite3* connection_of_newest() { return newest_connection_; }

    int insert(_zeb_db_handle_t* into, const std::string& socket, std::uint32_t cores) {
        const content_ptr content = new_content();
        zeb_db_content_put_text(content.get(), "Socket", socket.c_str());
        zeb_db_content_put_uint(content.get(), "CoreCount", cores);
        return zeb_db_insert(into, "Processor", content.get(), 0, nullptr);
    }
    int insert(const std::string& socket, std::uint32_t cores) { return insert(handle.get(), socket, cores); }

    /// The rows that a SQL query finds through a connection of its own, their columns joined by '|'.
    std::vector<std::string> rows(const std::string& sql) const { return sqlite_database(path).run(sql); }

    std::vector<std::string> sockets() const { return rows("SELECT Socket FROM Processor ORDER BY Id"); }

    const scratch_folder folder;
    const std::string path = folder.file("inventory.db");
    const captured_log log;
    const handle_ptr handle;
    sqlite3* const connection;

private:
    static inline sqlite3* newest_connection_ = nullptr;
};

#endif
