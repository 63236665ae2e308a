// SPDX-License-Identifier: Apache-2.0

/// A platform for tests: it does nothing but note every call with its arguments, and fails the calls it is told to.
///
/// A test program that is built with it answers the library's platform calls itself, as any process may; only XML is
/// still read by the workstation platform, once the recorder has let the library have a sysxml::parser. One
/// recording_platform at a time receives the calls of the process.
#ifndef TESTS_SUPPORT_RECORDING_PLATFORM_H
#define TESTS_SUPPORT_RECORDING_PLATFORM_H

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <inventory_service.h>
#include <zeb_db.h>

/// One row handed to zeb_db_insert(): the columns in put order, each value written as "text:CPU 1", "uint:7" or
/// "uint64:7".
struct recorded_row {
    std::string table;
    std::vector<std::pair<std::string, std::string>> columns;

    /// The value put into `column`, or "absent".
    std::string operator[](const std::string& column) const;
    std::vector<std::string> column_names() const;
};

class recording_platform {
public:
    recording_platform();
    /// Fails the running test when a buffer or a result was not released.
    ~recording_platform();
    recording_platform(const recording_platform&) = delete;
    recording_platform& operator=(const recording_platform&) = delete;

    static recording_platform& current();

    /// A handle that is none; the recorder never looks behind it.
    _zeb_db_handle_t* handle() { return reinterpret_cast<_zeb_db_handle_t*>(this); }

    // What to answer.

    /// From now on every call of this function fails: with `code`, with null where it returns a pointer, or with a
    /// sysipc::exception where it is a constructor.
    void fail(const std::string& function, int code = 1);
    /// Only its `occurrence`-th call fails, counted from 1.
    void fail_once(const std::string& function, int occurrence, int code = 1);
    /// The `ordinal`-th call of any function that can fail fails, counted from 1 over all of them.
    void fail_call(int ordinal, int code = 1);
    /// From now on every call of this function throws `thrown`.
    void throw_from(const std::string& function, std::exception_ptr thrown);
    /// Runs the commands of system() for real instead of answering 0; those of popen() always run.
    void run_commands() { runs_commands_ = true; }
    /// Called at every platform call and every log line with the text that was noted, before the call does anything:
    /// a place to look at the files between two calls, or to change them.
    std::function<void(const std::string& call)> at_call;

    /// The id that the next insert gives to its row.
    std::int64_t next_row_id = 1;
    /// The rows that a query of a table finds, column by column; a value that is absent cannot be read.
    std::map<std::string, std::vector<std::vector<std::optional<std::uint32_t>>>> query_rows;
    /// Queries of these tables succeed without a result object, or fail but still give one.
    std::set<std::string> queries_without_result;
    std::set<std::string> failing_queries_with_result;
    /// What a step gives behind the last row.
    int end_of_rows = 101;
    /// How many firmware updates are pending.
    std::uint32_t pending_firmware = 0;

    // What happened.

    /// Every platform call in order, written as "zeb_db_content_put_uint NodeIndex 5".
    std::vector<std::string> calls;
    /// Every log line in order, written as "ERROR: text", "WARNING: text" or "INFO: text". They are in `calls` too.
    std::vector<std::string> log;
    /// Every row that was inserted or should have been.
    std::vector<recorded_row> rows;

    std::vector<std::string> calls_of(const std::string& function) const;
    std::size_t count(const std::string& function) const { return calls_of(function).size(); }
    std::vector<recorded_row> rows_of(const std::string& table) const;
    /// Whether a failure that was asked for took place, and in which function.
    bool fired() const { return !failed_function_.empty(); }
    const std::string& failed_function() const { return failed_function_; }
    /// The failed call as `calls` has it.
    const std::string& failed_call() const { return failed_call_; }
    /// Whether every buffer and every result that was given out came back; each only once, or the test fails.
    bool everything_released() const { return buffers_.empty() && results_.empty(); }

    // The platform functions below the C interface.

    struct buffer;
    struct result;

    /// Notes a call; its failure code when it is to fail, else nothing. Throws when it is to throw.
    std::optional<int> enter(const std::string& function, const std::string& arguments);
    /// Fails the running test when a call brings another handle than handle().
    void check_handle(const _zeb_db_handle_t* given);
    /// Notes a call that cannot fail, or a log line.
    void note(const std::string& call);
    void note_log(const std::string& level, const std::string& text);
    int run(const char* command);
    buffer* new_buffer();
    result* new_result(const std::string& table);
    void release(buffer* given);
    void release(result* given);
    /// Fails the running test when the object was never given out or is released already.
    void check_alive(const buffer* given) const;
    void check_alive(const result* given) const;

private:
    struct wanted_failure {
        int occurrence;  // 0 = every one
        int code;
    };

    std::map<std::string, wanted_failure> failures_;
    std::map<std::string, std::exception_ptr> exceptions_;
    std::map<std::string, int> occurrences_;
    int fail_ordinal_ = 0;
    int fail_ordinal_code_ = 0;
    int fallible_calls_ = 0;
    std::string failed_function_;
    std::string failed_call_;
    bool runs_commands_ = false;
    std::set<const buffer*> buffers_;
    std::set<const result*> results_;
};

#endif
