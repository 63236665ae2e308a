// SPDX-License-Identifier: Apache-2.0

#include "sources/memory_inventory.h"

#include <sqlite3.h>
#include <zeb_db.h>
#include <zebdb_cds_parser.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "console/failure.h"
#include "rows/fields.h"
#include "rows/kinds.h"
#include "rows/table.h"
#include "sources/connection.h"
#include "sources/inventory.h"
#include "sources/library_log.h"
#include "sources/memory_database.h"

namespace {

connection_ptr open_connection(const std::string& name) {
    sqlite3* opened = nullptr;
    sqlite3_open_v2(name.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    connection_ptr connection(opened);
    if (sqlite3_errcode(opened) != SQLITE_OK) {
        throw failure(sqlite3_errmsg(opened));
    }
    return connection;
}

// Nobody else looks at the rows that are replaced: unlike a load into a file this leaves no marker that memory rows
// were deleted.
bool delete_rows(_zeb_db_handle_t* handle) {
    return std::all_of(std::begin(kinds::all), std::end(kinds::all), [handle](const inventory_kind* kind) {
        return zeb_db_delete(handle, kind->record.table, nullptr, nullptr, 0, 0) == 0;
    });
}

// All of it or, false, nothing of use.
bool load(_zeb_db_handle_t* handle, cds_parser::document& document) {
    cds_parser::parser parser;
    return zeb_db_begin_transaction(handle) == 0 && delete_rows(handle) && parser.init() != 0 &&
           parser.parse_component(handle, &document.root) != 0 && zeb_db_commit_transaction(handle) == 0;
}

}  // namespace

inventory load_into_memory(cds_parser::document& document, const std::string& title) {
    const memory_database database;
    const library_log log(log_display::hidden);
    if (!load(database.handle(), document)) {
        throw failure(log.problem());
    }
    return read_memory(database, title);
}

memory_loader::memory_loader() : rows_(read_memory(database_, "the rows in memory")) {}

std::vector<inventory_table> memory_loader::load(cds_parser::document& document) {
    const library_log log(log_display::hidden);
    if (!::load(database_.handle(), document)) {
        throw failure(log.problem());
    }
    std::vector<inventory_table> tables;
    for (const inventory_kind* kind : kinds::all) {
        forget_absent_values(tables.emplace_back(rows_.read_after(*kind, 0)));
    }
    return tables;
}

inventory read_memory(const memory_database& database, const std::string& title) {
    return inventory(title, open_connection(database.sqlite_name()).release());
}

inventory open_in_memory(const std::string& bytes, const std::string& title) {
    connection_ptr connection = open_connection(":memory:");
    auto* copy = static_cast<unsigned char*>(sqlite3_malloc64(bytes.size() + 1));  // none is given for none
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(copy, bytes.data(), bytes.size());
    const auto size = static_cast<sqlite3_int64>(bytes.size());
    const unsigned flags = SQLITE_DESERIALIZE_READONLY | SQLITE_DESERIALIZE_FREEONCLOSE;
    if (sqlite3_deserialize(connection.get(), "main", copy, size, size, flags) != SQLITE_OK) {
        throw failure(sqlite3_errmsg(connection.get()));
    }
    return inventory(title, connection.release());
}
