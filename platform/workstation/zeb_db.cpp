// SPDX-License-Identifier: Apache-2.0

// The inventory database client on a workstation: SQLite. Error codes are SQLite's primary result codes.

#include <zeb_db.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "content_values.h"
#include "database_failure.h"
#include "zeb_db_handle.h"

namespace {

constexpr int row_available = 9;

// Far more than the column sets of any real file; beyond it the statements are made anew.
constexpr std::size_t most_statements = 64;

}  // namespace

struct zeb_db_result_t {
    statement_ptr statement;
    std::string action;
    bool on_row = false;
    int end = SQLITE_OK;  // the code of the step that found no row, once there was one
};

namespace {

std::string quoted(const char* identifier) {
    std::string text = "\"";
    for (; *identifier != '\0'; ++identifier) {
        text.append(*identifier == '"' ? 2 : 1, *identifier);
    }
    return text + '"';
}

std::string where(const char* condition) {
    if (condition == nullptr) {
        return "";
    }
    return std::string(" WHERE ") + condition;
}

// After some errors, a full disk among them, SQLite rolls back by itself; what is written then would be permanent at
// once, although the caller still counts on its transaction.
bool transaction_was_lost(const _zeb_db_handle_t& handle) {
    return handle.in_transaction && sqlite3_get_autocommit(handle.connection.get()) != 0;
}

int refuse_without_transaction(const std::string& action) {
    return report_failure(SQLITE_ABORT, action + ": the transaction was rolled back by an earlier error");
}

int prepare(_zeb_db_handle_t& handle, const std::string& sql, statement_ptr& statement) {
    sqlite3_stmt* prepared = nullptr;
    const int rc = sqlite3_prepare_v2(handle.connection.get(), sql.c_str(), -1, &prepared, nullptr);
    statement.reset(prepared);
    return rc;
}

bool lacks_text(const char* const* texts, unsigned count) {
    return count > 0 && (texts == nullptr || std::find(texts, texts + count, nullptr) != texts + count);
}

int bind_arguments(sqlite3_stmt* statement, const char* const* arguments, unsigned count) {
    int rc = SQLITE_OK;
    for (unsigned i = 0; i < count && rc == SQLITE_OK; ++i) {
        rc = sqlite3_bind_text(statement, static_cast<int>(i) + 1, arguments[i], -1, SQLITE_TRANSIENT);
    }
    return rc;
}

std::string insert_sql(const char* table, const zeb_db_content_values_t& content) {
    std::string columns;
    std::string places;
    const char* const end = content.columns.data() + content.columns.size();
    for (const char* column = content.columns.data(); column != end; column += std::strlen(column) + 1) {
        columns += (columns.empty() ? "" : ", ") + quoted(column);
        places += places.empty() ? "?" : ", ?";
    }
    const std::string insert = "INSERT INTO " + quoted(table);
    if (content.count == 0) {
        return insert + " DEFAULT VALUES";
    }
    return insert + " (" + columns + ") VALUES (" + places + ")";
}

int find_insert(_zeb_db_handle_t& handle, const char* table, const zeb_db_content_values_t& content,
                sqlite3_stmt*& statement) {
    std::string& key = handle.insert_key;
    key = table;
    key += '\0';
    key += content.columns;
    const auto known = handle.inserts.find(key);
    if (known != handle.inserts.end()) {
        statement = known->second.get();
        return SQLITE_OK;
    }
    if (handle.inserts.size() == most_statements) {
        handle.inserts.clear();
    }
    statement_ptr prepared;
    const int rc = prepare(handle, insert_sql(table, content), prepared);
    statement = prepared.get();
    if (rc == SQLITE_OK) {
        handle.inserts.emplace(key, std::move(prepared));
    }
    return rc;
}

int bind_value(sqlite3_stmt* statement, int place, const column_value& value) {
    if (value.type == value_type::text) {
        return sqlite3_bind_text64(statement, place, value.text.data(), value.text.size(), SQLITE_STATIC, SQLITE_UTF8);
    }
    return sqlite3_bind_int64(statement, place, value.integer);
}

std::string inserting_into(const char* table) {
    return std::string("insert into ") + table;
}

int insert_row(_zeb_db_handle_t& handle, const char* table, const zeb_db_content_values_t& content,
               std::int64_t* row_id) {
    sqlite3_stmt* statement = nullptr;
    int rc = find_insert(handle, table, content, statement);
    for (std::size_t i = 0; i < content.count && rc == SQLITE_OK; ++i) {
        rc = bind_value(statement, static_cast<int>(i) + 1, content.values[i]);
    }
    if (rc != SQLITE_OK) {
        return rc;
    }
    rc = sqlite3_step(statement);
    sqlite3_reset(statement);
    if (rc != SQLITE_DONE) {
        return rc;
    }
    if (row_id != nullptr) {
        *row_id = sqlite3_last_insert_rowid(handle.connection.get());
    }
    return SQLITE_OK;
}

std::string query_sql(const char* table, const char* const* columns, unsigned column_count, const char* condition,
                      const char* order_by) {
    std::string sql = "SELECT ";
    for (unsigned i = 0; i < column_count; ++i) {
        sql += (i == 0 ? "" : ", ") + quoted(columns[i]);
    }
    sql += " FROM " + quoted(table) + where(condition);
    if (order_by != nullptr) {
        sql += std::string(" ORDER BY ") + order_by;
    }
    return sql;
}

}  // namespace

int execute(_zeb_db_handle_t& handle, const char* sql, const char* action) {
    return guarded([&] {
        if (transaction_was_lost(handle)) {
            return refuse_without_transaction(action);
        }
        const int rc = sqlite3_exec(handle.connection.get(), sql, nullptr, nullptr, nullptr);
        if (rc != SQLITE_OK) {
            return report_failure(handle.connection.get(), rc, action);
        }
        return SQLITE_OK;
    });
}

int zeb_db_delete(_zeb_db_handle_t* handle, const char* table, const char* condition, const char* const* arguments,
                  unsigned argument_count, unsigned /*flags*/) {
    if (handle == nullptr || table == nullptr || lacks_text(arguments, argument_count)) {
        return SQLITE_MISUSE;
    }
    return guarded([&]() -> int {
        const std::string action = std::string("delete from ") + table;
        if (transaction_was_lost(*handle)) {
            return refuse_without_transaction(action);
        }
        statement_ptr statement;
        int rc = prepare(*handle, "DELETE FROM " + quoted(table) + where(condition), statement);
        if (rc == SQLITE_OK) {
            rc = bind_arguments(statement.get(), arguments, argument_count);
        }
        if (rc == SQLITE_OK) {
            rc = sqlite3_step(statement.get());
        }
        return rc == SQLITE_DONE ? SQLITE_OK : report_failure(handle->connection.get(), rc, action);
    });
}

int zeb_db_insert(_zeb_db_handle_t* handle, const char* table, zeb_db_content_values_t* values, unsigned /*flags*/,
                  std::int64_t* row_id) {
    if (handle == nullptr || table == nullptr || values == nullptr) {
        return SQLITE_MISUSE;
    }
    return guarded([&]() -> int {
        if (transaction_was_lost(*handle)) {
            return refuse_without_transaction(inserting_into(table));
        }
        if (values->failure != SQLITE_OK) {
            return report_failure(values->failure, inserting_into(table) + ": no memory for one of the values");
        }
        const int rc = insert_row(*handle, table, *values, row_id);
        if (rc != SQLITE_OK) {
            return report_failure(handle->connection.get(), rc, inserting_into(table));
        }
        return SQLITE_OK;
    });
}

int zeb_db_query(_zeb_db_handle_t* handle, const char* table, const char* const* columns, unsigned column_count,
                 const char* condition, const char* const* arguments, unsigned argument_count, const char* order_by,
                 zeb_db_result_t** result) {
    if (handle == nullptr || table == nullptr || column_count == 0 || lacks_text(columns, column_count) ||
        lacks_text(arguments, argument_count) || result == nullptr) {
        return SQLITE_MISUSE;
    }
    *result = nullptr;
    return guarded([&] {
        auto selected = std::make_unique<zeb_db_result_t>();
        selected->action = std::string("query ") + table;
        int rc = prepare(*handle, query_sql(table, columns, column_count, condition, order_by), selected->statement);
        if (rc == SQLITE_OK) {
            rc = bind_arguments(selected->statement.get(), arguments, argument_count);
        }
        if (rc != SQLITE_OK) {
            return report_failure(handle->connection.get(), rc, selected->action);
        }
        *result = selected.release();
        return SQLITE_OK;
    });
}

int zeb_db_result_step(zeb_db_result_t* result) {
    if (result == nullptr) {
        return SQLITE_MISUSE;
    }
    if (result->end != SQLITE_OK) {
        return result->end;  // SQLite would begin with the first row again
    }
    const int rc = sqlite3_step(result->statement.get());
    result->on_row = rc == SQLITE_ROW;
    if (result->on_row) {
        return row_available;
    }
    result->end = rc == row_available ? SQLITE_ERROR : rc;  // SQLite's own 9 is an interrupted statement
    return rc == SQLITE_DONE ? rc : guarded([&] {
        return report_failure(sqlite3_db_handle(result->statement.get()), result->end, result->action);
    });
}

int zeb_db_result_column_uint(zeb_db_result_t* result, unsigned column, std::uint32_t* value) {
    if (result == nullptr || value == nullptr || !result->on_row) {
        return SQLITE_MISUSE;
    }
    sqlite3_stmt* statement = result->statement.get();
    if (column >= static_cast<unsigned>(sqlite3_data_count(statement))) {
        return SQLITE_RANGE;
    }
    const int index = static_cast<int>(column);
    if (sqlite3_column_type(statement, index) != SQLITE_INTEGER) {
        return SQLITE_MISMATCH;
    }
    *value = static_cast<std::uint32_t>(sqlite3_column_int64(statement, index));
    return SQLITE_OK;
}

void zeb_db_free_result(zeb_db_result_t* result) {
    delete result;
}

int zeb_db_begin_transaction(_zeb_db_handle_t* handle) {
    if (handle == nullptr) {
        return SQLITE_MISUSE;
    }
    const int rc = execute(*handle, "BEGIN IMMEDIATE", "begin a transaction");
    handle->in_transaction = handle->in_transaction || rc == SQLITE_OK;
    return rc;
}

int zeb_db_commit_transaction(_zeb_db_handle_t* handle) {
    if (handle == nullptr) {
        return SQLITE_MISUSE;
    }
    const int rc = execute(*handle, "COMMIT", "commit");
    handle->in_transaction = handle->in_transaction && rc != SQLITE_OK;
    return rc;
}

int zeb_db_rollback_transaction(_zeb_db_handle_t* handle) {
    if (handle == nullptr) {
        return SQLITE_MISUSE;
    }
    const int rc = transaction_was_lost(*handle) ? SQLITE_OK : execute(*handle, "ROLLBACK", "roll back");
    handle->in_transaction = handle->in_transaction && rc != SQLITE_OK;
    return rc;
}
