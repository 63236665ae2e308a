// SPDX-License-Identifier: Apache-2.0

/// Databases as SQLite itself sees them, past the platform's client.
#ifndef TESTS_SUPPORT_SQLITE_DATABASE_H
#define TESTS_SUPPORT_SQLITE_DATABASE_H

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

/// Runs SQL; the test fails when SQLite refuses it. Each row of the last statement becomes a line of its values with
/// '|' between them, a null written as "null".
inline std::vector<std::string> run_sql(sqlite3* connection, const std::string& sql) {
    std::vector<std::string> lines;
    const auto add_line = [](void* target, int count, char** values, char**) {
        std::string line;
        for (int i = 0; i < count; ++i) {
            line += (i == 0 ? "" : "|") + std::string(values[i] == nullptr ? "null" : values[i]);
        }
        static_cast<std::vector<std::string>*>(target)->push_back(line);
        return 0;
    };
    EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), add_line, &lines, nullptr), SQLITE_OK)
        << sqlite3_errmsg(connection) << ": " << sql;
    return lines;
}

/// The connection that `open` opens, whoever keeps it.
template <class Open>
sqlite3* connection_opened_by(Open open) {
    static sqlite3* newest;
    newest = nullptr;
    int (*const note)(sqlite3*, const char**, const sqlite3_api_routines*) = [](sqlite3* opened, const char**,
                                                                                const sqlite3_api_routines*) {
        newest = opened;
        return SQLITE_OK;
    };
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(note));
    open();
    sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(note));
    return newest;
}

/// A connection of the test's own to a database file.
class sqlite_database {
public:
    explicit sqlite_database(const std::string& path) {
        sqlite3* opened = nullptr;
        EXPECT_EQ(sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK) << path;
        connection_.reset(opened);
    }

    std::vector<std::string> run(const std::string& sql) { return run_sql(connection_.get(), sql); }

private:
    struct closer {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };
    std::unique_ptr<sqlite3, closer> connection_;
};

#endif
