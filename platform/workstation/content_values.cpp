// SPDX-License-Identifier: Apache-2.0

#include "content_values.h"

#include <zeb_db.h>

#include <cstdint>
#include <cstring>
#include <new>

#include "database_failure.h"

namespace {

column_value& next_value(zeb_db_content_values_t& content) {
    if (content.count == content.values.size()) {
        content.values.emplace_back();
    }
    return content.values[content.count];
}

// Counts the next value in, once it is complete.
void add_value(zeb_db_content_values_t& content, const char* column) {
    content.columns.append(column, std::strlen(column) + 1);
    ++content.count;
}

// Those who put values need not look at what comes of each: the buffer remembers it for the insert.
template <class Fill>
int put(zeb_db_content_values_t& content, const char* column, Fill fill) {
    const int rc = guarded([&] {
        fill(next_value(content));
        add_value(content, column);
        return SQLITE_OK;
    });
    content.failure = rc == SQLITE_OK ? content.failure : rc;
    return rc;
}

int put_integer(zeb_db_content_values_t* content, const char* column, sqlite3_int64 integer) {
    if (content == nullptr || column == nullptr) {
        return SQLITE_MISUSE;
    }
    return put(*content, column, [integer](column_value& value) {
        value.type = value_type::integer;
        value.integer = integer;
    });
}

sqlite3_int64 same_bits(std::uint64_t value) {
    sqlite3_int64 integer = 0;
    static_assert(sizeof integer == sizeof value);
    std::memcpy(&integer, &value, sizeof integer);
    return integer;
}

}  // namespace

zeb_db_content_values_t* zeb_db_get_content_values(void) {
    return new (std::nothrow) zeb_db_content_values_t;
}

void zeb_db_content_clear(zeb_db_content_values_t* values) {
    if (values != nullptr) {
        values->columns.clear();
        values->count = 0;
        values->failure = SQLITE_OK;
    }
}

int zeb_db_content_put_text(zeb_db_content_values_t* values, const char* column, const char* text) {
    if (values == nullptr || column == nullptr || text == nullptr) {
        return SQLITE_MISUSE;
    }
    return put(*values, column, [text](column_value& value) {
        value.type = value_type::text;
        value.text = text;
    });
}

int zeb_db_content_put_uint(zeb_db_content_values_t* values, const char* column, std::uint32_t value) {
    return put_integer(values, column, sqlite3_int64{value});
}

int zeb_db_content_put_uint64(zeb_db_content_values_t* values, const char* column, std::uint64_t value) {
    return put_integer(values, column, same_bits(value));
}

void zeb_db_free_content_values(zeb_db_content_values_t* values) {
    delete values;
}
