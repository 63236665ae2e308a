// SPDX-License-Identifier: Apache-2.0

/// @file
/// The client of the controller's inventory database, as this library uses it.
///
/// Every function returns 0 for success and an error code otherwise, unless it says something else. Handles, buffers
/// and results belong to one thread at a time. Table and column names are plain SQL identifiers that the schema knows.
/// For C and C++.
#ifndef ZEB_DB_H
#define ZEB_DB_H

#ifdef __cplusplus
#include <cstdint>
#else
#include <stdint.h>
#endif

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

/// An open inventory database.
typedef struct _zeb_db_handle_t _zeb_db_handle_t;
/// The column values of one row to be written, in the order in which they were put.
typedef struct zeb_db_content_values_t zeb_db_content_values_t;
/// The rows that a query selected.
typedef struct zeb_db_result_t zeb_db_result_t;

/// Deletes the rows of `table` that satisfy `condition`; null selects every row.
/// `arguments` holds `argument_count` texts for the placeholders of `condition`; `flags` is 0.
int zeb_db_delete(_zeb_db_handle_t* handle, const char* table, const char* condition, const char* const* arguments,
                  unsigned argument_count, unsigned flags);

/// Inserts one row of the values in `values`, which stays the caller's and unchanged. Columns that were not put get
/// the database's default. On success the new row's id is stored through `row_id` unless that is null; on failure
/// `*row_id` keeps its value. `flags` is 0.
int zeb_db_insert(_zeb_db_handle_t* handle, const char* table, zeb_db_content_values_t* values, unsigned flags,
                  int64_t* row_id);

/// Selects `column_count` columns of the rows of `table` that satisfy `condition` (null: every row), in the order that
/// `order_by` gives (null: the database's own). Stores a result, or null, through `result`; a result may come back even
/// with an error code. The caller releases it with zeb_db_free_result().
int zeb_db_query(_zeb_db_handle_t* handle, const char* table, const char* const* columns, unsigned column_count,
                 const char* condition, const char* const* arguments, unsigned argument_count, const char* order_by,
                 zeb_db_result_t** result);

/// Moves to the next row. 9 while a row is available, any other code at the end and on an error.
int zeb_db_result_step(zeb_db_result_t* result);

/// Stores column `column` of the current row, counted from 0 in the order of the query, through `value` as an unsigned
/// 32-bit number.
int zeb_db_result_column_uint(zeb_db_result_t* result, unsigned column, uint32_t* value);

/// Releases a result; null is allowed.
void zeb_db_free_result(zeb_db_result_t* result);

/// A new, empty buffer, or null when memory is out. The caller releases it with zeb_db_free_content_values().
zeb_db_content_values_t* zeb_db_get_content_values(void);

/// Empties the buffer, so that it can be filled anew.
void zeb_db_content_clear(zeb_db_content_values_t* values);

/// Puts a copy of the NUL-terminated UTF-8 `text` into `column`.
int zeb_db_content_put_text(zeb_db_content_values_t* values, const char* column, const char* text);

/// Puts an unsigned 32-bit number into `column`.
int zeb_db_content_put_uint(zeb_db_content_values_t* values, const char* column, uint32_t value);

/// Puts an unsigned 64-bit number into `column`.
int zeb_db_content_put_uint64(zeb_db_content_values_t* values, const char* column, uint64_t value);

/// Releases a buffer; null is allowed.
void zeb_db_free_content_values(zeb_db_content_values_t* values);

/// Opens a transaction on the handle; transactions do not nest.
int zeb_db_begin_transaction(_zeb_db_handle_t* handle);

/// Makes everything since zeb_db_begin_transaction() permanent. On failure the transaction stays open.
int zeb_db_commit_transaction(_zeb_db_handle_t* handle);

/// Takes back everything since zeb_db_begin_transaction().
int zeb_db_rollback_transaction(_zeb_db_handle_t* handle);

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

#endif
