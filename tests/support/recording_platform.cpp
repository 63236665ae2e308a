// SPDX-License-Identifier: Apache-2.0

#include "recording_platform.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sysipc.h>
#include <sysxml.h>
#include <vonk_log.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

recording_platform* active = nullptr;

constexpr int row_available = 9;

std::string text_of(const char* text) {
    return text == nullptr ? "null" : text;
}

std::string formatted(const char* format, va_list arguments) {
    char text[4096];
    std::vsnprintf(text, sizeof text, format, arguments);
    return text;
}

}  // namespace

struct recording_platform::buffer {
    std::vector<std::pair<std::string, std::string>> columns;
};

struct recording_platform::result {
    std::string table;
    std::size_t stepped = 0;
};

std::string recorded_row::operator[](const std::string& column) const {
    for (const auto& [name, value] : columns) {
        if (name == column) {
            return value;
        }
    }
    return "absent";
}

std::vector<std::string> recorded_row::column_names() const {
    std::vector<std::string> names;
    for (const auto& entry : columns) {
        names.push_back(entry.first);
    }
    return names;
}

recording_platform::recording_platform() {
    EXPECT_EQ(active, nullptr) << "two recording platforms at a time";
    active = this;
}

recording_platform::~recording_platform() {
    EXPECT_TRUE(buffers_.empty()) << buffers_.size() << " column-value buffers were not released";
    EXPECT_TRUE(results_.empty()) << results_.size() << " results were not released";
    active = nullptr;
}

recording_platform& recording_platform::current() {
    if (active == nullptr) {
        std::fputs("a platform function was called without a recording platform\n", stderr);
        std::abort();
    }
    return *active;
}

void recording_platform::fail(const std::string& function, int code) {
    failures_[function] = {0, code};
}

void recording_platform::fail_once(const std::string& function, int occurrence, int code) {
    failures_[function] = {occurrence, code};
}

void recording_platform::fail_call(int ordinal, int code) {
    fail_ordinal_ = ordinal;
    fail_ordinal_code_ = code;
}

void recording_platform::throw_from(const std::string& function, std::exception_ptr thrown) {
    exceptions_[function] = std::move(thrown);
}

std::vector<std::string> recording_platform::calls_of(const std::string& function) const {
    std::vector<std::string> found;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(found), [&](const std::string& call) {
        return call == function || call.compare(0, function.size() + 1, function + ' ') == 0;
    });
    return found;
}

std::vector<recorded_row> recording_platform::rows_of(const std::string& table) const {
    std::vector<recorded_row> found;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(found),
                 [&](const recorded_row& row) { return row.table == table; });
    return found;
}

std::optional<int> recording_platform::enter(const std::string& function, const std::string& arguments) {
    note(arguments.empty() ? function : function + ' ' + arguments);
    ++fallible_calls_;
    const int occurrence = ++occurrences_[function];
    const auto thrown = exceptions_.find(function);
    if (thrown != exceptions_.end()) {
        failed_function_ = function;
        failed_call_ = calls.back();
        std::rethrow_exception(thrown->second);
    }
    std::optional<int> code;
    if (fallible_calls_ == fail_ordinal_) {
        code = fail_ordinal_code_;
    }
    const auto wanted = failures_.find(function);
    if (wanted != failures_.end() && (wanted->second.occurrence == 0 || wanted->second.occurrence == occurrence)) {
        code = wanted->second.code;
    }
    if (code) {
        failed_function_ = function;
        failed_call_ = calls.back();
    }
    return code;
}

void recording_platform::check_handle(const _zeb_db_handle_t* given) {
    EXPECT_EQ(given, handle()) << "a call with another database handle";
}

void recording_platform::note(const std::string& call) {
    calls.push_back(call);
    if (at_call) {
        at_call(call);
    }
}

void recording_platform::note_log(const std::string& level, const std::string& text) {
    log.push_back(level + ": " + text);
    note(log.back());
}

int recording_platform::run(const char* command) {
    if (const auto failure = enter("system", text_of(command))) {
        return *failure;
    }
    if (!runs_commands_) {
        return 0;
    }
    using system_function = int (*)(const char*);
    static const auto real = reinterpret_cast<system_function>(dlsym(RTLD_NEXT, "system"));
    return real(command);
}

recording_platform::buffer* recording_platform::new_buffer() {
    auto* made = new buffer;
    buffers_.insert(made);
    return made;
}

recording_platform::result* recording_platform::new_result(const std::string& table) {
    auto* made = new result{table};
    results_.insert(made);
    return made;
}

void recording_platform::check_alive(const buffer* given) const {
    if (buffers_.count(given) == 0) {
        ADD_FAILURE() << "a column-value buffer was used that was never given out or is released already";
        std::abort();
    }
}

void recording_platform::check_alive(const result* given) const {
    if (results_.count(given) == 0) {
        ADD_FAILURE() << "a result was used that was never given out or is released already";
        std::abort();
    }
}

void recording_platform::release(buffer* given) {
    check_alive(given);
    buffers_.erase(given);
    delete given;
}

void recording_platform::release(result* given) {
    check_alive(given);
    results_.erase(given);
    delete given;
}

namespace {

recording_platform::buffer& opened(zeb_db_content_values_t* values) {
    auto* given = reinterpret_cast<recording_platform::buffer*>(values);
    active->check_alive(given);
    return *given;
}

recording_platform::result& opened(zeb_db_result_t* values) {
    auto* given = reinterpret_cast<recording_platform::result*>(values);
    active->check_alive(given);
    return *given;
}

int put(zeb_db_content_values_t* values, const std::string& type, const char* column, const std::string& value) {
    auto& recorder = recording_platform::current();
    opened(values).columns.emplace_back(column, type + ':' + value);
    return recorder.enter("zeb_db_content_put_" + type, text_of(column) + ' ' + value).value_or(0);
}

recording_platform& recorder_of(const _zeb_db_handle_t* handle) {
    auto& recorder = recording_platform::current();
    recorder.check_handle(handle);
    return recorder;
}

std::string list_of(const char* const* texts, unsigned count) {
    std::string list;
    for (unsigned i = 0; i < count; ++i) {
        list += (i == 0 ? "" : ",") + text_of(texts[i]);
    }
    return list;
}

// What follows the table in the note of a selecting call; nothing when everything was left empty.
std::string selection(const char* condition, const char* const* arguments, unsigned count, const char* order_by) {
    std::string text;
    if (condition != nullptr) {
        text += std::string(" where ") + condition;
    }
    if (arguments != nullptr || count != 0) {
        text += " with " + list_of(arguments, count);
    }
    if (order_by != nullptr) {
        text += std::string(" by ") + order_by;
    }
    return text;
}

}  // namespace

int zeb_db_delete(_zeb_db_handle_t* handle, const char* table, const char* condition, const char* const* arguments,
                  unsigned argument_count, unsigned flags) {
    return recorder_of(handle)
        .enter("zeb_db_delete", text_of(table) + selection(condition, arguments, argument_count, nullptr) +
                                    (flags == 0 ? "" : " flags " + std::to_string(flags)))
        .value_or(0);
}

int zeb_db_insert(_zeb_db_handle_t* handle, const char* table, zeb_db_content_values_t* values, unsigned flags,
                  std::int64_t* row_id) {
    auto& recorder = recorder_of(handle);
    recorder.rows.push_back({text_of(table), opened(values).columns});
    if (const auto failure =
            recorder.enter("zeb_db_insert", text_of(table) + (flags == 0 ? "" : " flags " + std::to_string(flags)))) {
        return *failure;
    }
    *row_id = recorder.next_row_id++;
    return 0;
}

int zeb_db_query(_zeb_db_handle_t* handle, const char* table, const char* const* columns, unsigned column_count,
                 const char* condition, const char* const* arguments, unsigned argument_count, const char* order_by,
                 zeb_db_result_t** result) {
    auto& recorder = recorder_of(handle);
    const auto failure = recorder.enter("zeb_db_query", text_of(table) + ' ' + list_of(columns, column_count) +
                                                            selection(condition, arguments, argument_count, order_by));
    const bool with_result = failure ? recorder.failing_queries_with_result.count(table) != 0
                                     : recorder.queries_without_result.count(table) == 0;
    *result = with_result ? reinterpret_cast<zeb_db_result_t*>(recorder.new_result(table)) : nullptr;
    return failure.value_or(0);
}

int zeb_db_result_step(zeb_db_result_t* result) {
    auto& recorder = recording_platform::current();
    auto& given = opened(result);
    if (const auto failure = recorder.enter("zeb_db_result_step", given.table)) {
        return *failure;
    }
    if (given.stepped == recorder.query_rows[given.table].size()) {
        return recorder.end_of_rows;
    }
    ++given.stepped;
    return row_available;
}

int zeb_db_result_column_uint(zeb_db_result_t* result, unsigned column, std::uint32_t* value) {
    auto& recorder = recording_platform::current();
    auto& given = opened(result);
    if (const auto failure = recorder.enter("zeb_db_result_column_uint", given.table + ' ' + std::to_string(column))) {
        return *failure;
    }
    const auto& cell = recorder.query_rows[given.table].at(given.stepped - 1).at(column);
    if (!cell) {
        return 1;
    }
    *value = *cell;
    return 0;
}

void zeb_db_free_result(zeb_db_result_t* result) {
    auto& given = opened(result);
    auto& recorder = recording_platform::current();
    recorder.note("zeb_db_free_result " + given.table);
    recorder.release(&given);
}

zeb_db_content_values_t* zeb_db_get_content_values(void) {
    auto& recorder = recording_platform::current();
    if (recorder.enter("zeb_db_get_content_values", "")) {
        return nullptr;
    }
    return reinterpret_cast<zeb_db_content_values_t*>(recorder.new_buffer());
}

void zeb_db_content_clear(zeb_db_content_values_t* values) {
    opened(values).columns.clear();
    recording_platform::current().note("zeb_db_content_clear");
}

int zeb_db_content_put_text(zeb_db_content_values_t* values, const char* column, const char* text) {
    return put(values, "text", column, text_of(text));
}

int zeb_db_content_put_uint(zeb_db_content_values_t* values, const char* column, std::uint32_t value) {
    return put(values, "uint", column, std::to_string(value));
}

int zeb_db_content_put_uint64(zeb_db_content_values_t* values, const char* column, std::uint64_t value) {
    return put(values, "uint64", column, std::to_string(value));
}

void zeb_db_free_content_values(zeb_db_content_values_t* values) {
    auto& given = opened(values);
    auto& recorder = recording_platform::current();
    recorder.note("zeb_db_free_content_values");
    recorder.release(&given);
}

int zeb_db_begin_transaction(_zeb_db_handle_t* handle) {
    return recorder_of(handle).enter("zeb_db_begin_transaction", "").value_or(0);
}

int zeb_db_commit_transaction(_zeb_db_handle_t* handle) {
    return recorder_of(handle).enter("zeb_db_commit_transaction", "").value_or(0);
}

int zeb_db_rollback_transaction(_zeb_db_handle_t* handle) {
    return recorder_of(handle).enter("zeb_db_rollback_transaction", "").value_or(0);
}

_zeb_db_handle_t* get_dmdb_handle(void) {
    auto& recorder = recording_platform::current();
    return recorder.enter("get_dmdb_handle", "") ? nullptr : recorder.handle();
}

int parse_aim(_zeb_db_handle_t* handle, unsigned aim_argument) {
    return recorder_of(handle).enter("parse_aim", std::to_string(aim_argument)).value_or(0);
}

int agentless_update_inventory_sequence(int kind) {
    return recording_platform::current().enter("agentless_update_inventory_sequence", std::to_string(kind)).value_or(0);
}

int rebuild_tables_in_memory(_zeb_db_handle_t* handle) {
    return recorder_of(handle).enter("rebuild_tables_in_memory", "").value_or(0);
}

int zebdb_get_pldm_firmware_pending_list(zebdb_pldm_firmware_pending_list* list) {
    auto& recorder = recording_platform::current();
    if (const auto failure =
            recorder.enter("zebdb_get_pldm_firmware_pending_list",
                           std::to_string(list->count) + (list->entries == nullptr ? " null" : " entries"))) {
        return *failure;
    }
    list->count = recorder.pending_firmware;
    list->entries = recorder.pending_firmware == 0 ? nullptr : std::calloc(recorder.pending_firmware, 16);
    return 0;
}

namespace sysxml {

// A program without a recorder reads XML all the same. libxml2 needs no start: the first document does it.
parser::parser() {
    if (active != nullptr && active->enter("sysxml::parser", "")) {
        throw sysipc::exception("the XML library is out of order");
    }
}

}  // namespace sysxml

namespace vonk_log {

void logErr(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    recording_platform::current().note_log("ERROR", formatted(format, arguments));
    va_end(arguments);
}

void logWarn(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    recording_platform::current().note_log("WARNING", formatted(format, arguments));
    va_end(arguments);
}

void logInfo(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    recording_platform::current().note_log("INFO", formatted(format, arguments));
    va_end(arguments);
}

}  // namespace vonk_log

// The library's shell commands come here as well, since the program's own symbols go before the C library's.
extern "C" int system(const char* command) {
    return recording_platform::current().run(command);
}

extern "C" std::FILE* popen(const char* command, const char* mode) {
    if (recording_platform::current().enter("popen", text_of(command) + " for " + mode)) {
        return nullptr;
    }
    using popen_function = std::FILE* (*)(const char*, const char*);
    static const auto real = reinterpret_cast<popen_function>(dlsym(RTLD_NEXT, "popen"));
    return real(command, mode);
}
