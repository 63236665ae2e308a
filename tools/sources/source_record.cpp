// SPDX-License-Identifier: Apache-2.0

#include "sources/source_record.h"

#include <nettle/sha2.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <istream>
#include <memory>
#include <string>

#include <zeb_db.h>

#include "console/time_text.h"
#include "sources/input_file.h"

namespace {

struct content_releaser {
    void operator()(zeb_db_content_values_t* values) const { zeb_db_free_content_values(values); }
};
using content_ptr = std::unique_ptr<zeb_db_content_values_t, content_releaser>;

std::string hexadecimal(const std::uint8_t* bytes, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(bytes[i]));
        text += digits;
    }
    return text;
}

struct time_unit {
    std::time_t seconds;
    const char* name;
};

constexpr time_unit time_units[] = {{86400, "day"}, {3600, "hour"}, {60, "minute"}, {1, "second"}};

// In the largest unit of which there is more than one.
std::string duration_text(std::time_t seconds) {
    for (const time_unit& unit : time_units) {
        if (seconds >= 2 * unit.seconds) {
            return std::to_string(seconds / unit.seconds) + ' ' + unit.name + "s ago, ";
        }
    }
    return seconds < 0 ? "" : "just now, ";
}

}  // namespace

source_record digest_of(std::istream& in) {
    sha256_ctx context = {};
    ::sha256_init(&context);
    source_record record;
    std::array<char, 1 << 16> block = {};
    do {
        in.read(block.data(), block.size());
        const auto count = static_cast<std::size_t>(in.gcount());
        ::sha256_update(&context, count, reinterpret_cast<const std::uint8_t*>(block.data()));
        record.bytes += count;
    } while (in);
    std::uint8_t digest[SHA256_DIGEST_SIZE];
    ::sha256_digest(&context, sizeof digest, digest);
    record.sha256 = hexadecimal(digest, sizeof digest);
    return record;
}

source_record source_of(const std::string& name, const input_file& input) {
    source_record record = digest_of(*input.read_as_it_lies());
    record.name = name;
    record.loaded_at = std::time(nullptr);
    return record;
}

bool write_source(_zeb_db_handle_t* handle, const source_record& source) {
    const content_ptr values(zeb_db_get_content_values());
    std::int64_t row_id = 0;
    return values != nullptr && zeb_db_delete(handle, "Source", nullptr, nullptr, 0, 0) == 0 &&
           zeb_db_content_put_text(values.get(), "Name", source.name.c_str()) == 0 &&
           zeb_db_content_put_uint64(values.get(), "Bytes", source.bytes) == 0 &&
           zeb_db_content_put_text(values.get(), "Sha256", source.sha256.c_str()) == 0 &&
           zeb_db_content_put_uint64(values.get(), "LoadedAt", static_cast<std::uint64_t>(source.loaded_at)) == 0 &&
           zeb_db_insert(handle, "Source", values.get(), 0, &row_id) == 0;
}

std::string age_text(const source_record& source, std::time_t now) {
    return "Loaded " + duration_text(now - source.loaded_at) + time_text(source.loaded_at) +
           (source.name.empty() ? "" : ", from " + input_title(source.name));
}
