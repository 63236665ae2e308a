// SPDX-License-Identifier: Apache-2.0

#include "function_keys.h"

#include <vonk_log.h>
#include <zeb_db.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include "query_result.h"

namespace {

constexpr std::size_t word_size = sizeof(std::uint32_t);

struct file_closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using file_ptr = std::unique_ptr<std::FILE, file_closer>;

struct memory_releaser {
    void operator()(void* memory) const { std::free(memory); }
};
using memory_ptr = std::unique_ptr<unsigned char, memory_releaser>;

memory_ptr allocate(std::size_t size) {
    return memory_ptr(static_cast<unsigned char*>(std::calloc(size, 1)));
}

// 0 for an empty file and for one whose size cannot be told.
std::size_t size_of(std::FILE* file) {
    const long end = std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : 0;
    return end > 0 ? static_cast<std::size_t>(end) : 0;
}

std::uint32_t word_at(const unsigned char* bytes, std::size_t index) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes + index * word_size, word_size);
    return word;
}

// Key `i` lies behind the count and the `i - 1` keys before it. It is taken only while the file goes on behind it, so
// the last key of a whole file never is; readers of these files count on that.
void append_keys(const unsigned char* bytes, std::size_t size, function_key_list& keys) {
    const std::uint32_t count = size > word_size ? word_at(bytes, 0) : 0;
    for (std::size_t i = 1; i <= count && (i + 1) * word_size < size; ++i) {
        keys.push_back(word_at(bytes, i));
    }
}

}  // namespace

int read_fkeys_fromDb(_zeb_db_handle_t* handle, function_key_list& keys, const char* table, const char* column) {
    zeb_db_result_t* result = nullptr;
    const int rc = zeb_db_query(handle, table, &column, 1, nullptr, nullptr, 0, nullptr, &result);
    const result_ptr rows(result);
    while (rc == 0 && rows != nullptr && zeb_db_result_step(rows.get()) == row_available) {
        std::uint32_t key = 0;
        keys.push_back(zeb_db_result_column_uint(rows.get(), 0, &key) == 0 ? key : 0);
    }
    return rc;
}

void save_fkeys_ToFile(const char* path, const function_key_list& keys) {
    if (keys.empty()) {
        return;
    }
    const std::size_t size = (keys.size() + 1) * word_size;
    const memory_ptr bytes = allocate(size);
    if (bytes == nullptr) {
        return;
    }
    const auto count = static_cast<std::uint32_t>(keys.size());
    std::memcpy(bytes.get(), &count, word_size);
    std::memcpy(bytes.get() + word_size, keys.data(), keys.size() * word_size);

    const file_ptr file(std::fopen(path, "w+"));
    if (file == nullptr) {
        vonk_log::logErr("%s: open %s failed", "save_fkeys_ToFile", path);
        return;
    }
    std::setvbuf(file.get(), nullptr, _IONBF, 0);  // a full disk shows in the write
    const std::size_t written = std::fwrite(bytes.get(), 1, size, file.get());
    if (written == size) {
        vonk_log::logInfo("%s: %u function keys are saved into %s", "save_fkeys_ToFile", count, path);
    } else {
        vonk_log::logErr("%s: write %s failed, rc = %d", "save_fkeys_ToFile", path, static_cast<int>(written));
    }
}

int read_fkeys_fromFile(const char* path, function_key_list& keys) {
    file_ptr file(std::fopen(path, "rb"));
    if (file == nullptr) {
        return -1;
    }
    const std::size_t size = size_of(file.get());
    if (size == 0) {
        return -1;
    }
    const memory_ptr bytes = allocate(size);
    if (bytes == nullptr) {
        return -1;
    }
    if (std::fseek(file.get(), 0, SEEK_SET) != 0 || std::fread(bytes.get(), 1, size, file.get()) != size) {
        vonk_log::logErr("%s: reading %s failed!", "read_fkeys_fromFile", path);
        return -1;
    }
    file.reset();
    append_keys(bytes.get(), size, keys);
    return 0;
}

std::optional<std::uint32_t> first_vanished_key(const function_key_list& saved, const function_key_list& present) {
    for (const std::uint32_t key : saved) {
        if (std::find(present.begin(), present.end(), key) == present.end()) {
            return key;
        }
    }
    return std::nullopt;
}
