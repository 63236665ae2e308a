// SPDX-License-Identifier: Apache-2.0

// Several threads use the library and the workstation platform at the same time. In the preset tsan the thread
// sanitizer watches them; in the others it is what they leave that counts.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vonk_log_workstation.h>
#include <zeb_db_workstation.h>
#include <zebdb_cds_parser.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "cds_parser/record_columns.h"
#include "support/scratch_folder.h"
#include "support/sqlite_database.h"

using testing::Each;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr int thread_count = 8;
constexpr int rounds = 5;

constexpr std::array files = {SAMPLES_DIR "/two-socket-server.xml", SAMPLES_DIR "/minimal.xml",
                              SAMPLES_DIR "/tolerated.xml", SAMPLES_DIR "/errors/truncated.xml"};

const char* file_of(int thread) {
    return files[static_cast<std::size_t>(thread) % files.size()];
}

template <class Action>
using results_of = std::array<decltype(std::declval<Action>()(0)), thread_count>;

// What `act` gives for the number of each thread, in that order.
template <class Action>
results_of<Action> in_threads(Action act) {
    results_of<Action> results = {};
    std::vector<std::thread> threads;
    for (int number = 0; number < thread_count; ++number) {
        threads.emplace_back([&act, &results, number] {
            for (int round = 0; round < rounds; ++round) {
                results[static_cast<std::size_t>(number)] = act(number);
            }
        });
    }
    std::for_each(threads.begin(), threads.end(), [](std::thread& thread) { thread.join(); });
    return results;
}

// The same one after the other.
template <class Action>
results_of<Action> in_turn(Action act) {
    results_of<Action> results = {};
    for (int number = 0; number < thread_count; ++number) {
        results[static_cast<std::size_t>(number)] = act(number);
    }
    return results;
}

/// Takes the lines that all threads log.
class shared_log {
public:
    shared_log() { vonk_log::set_sink(take, this); }
    ~shared_log() { vonk_log::set_sink(nullptr, nullptr); }
    shared_log(const shared_log&) = delete;
    shared_log& operator=(const shared_log&) = delete;

    long count(const std::string& line) const { return std::count(lines_.begin(), lines_.end(), line); }

private:
    static void take(void* log, vonk_log::level, const char* text) {
        auto& self = *static_cast<shared_log*>(log);
        const std::lock_guard<std::mutex> lock(self.mutex_);
        self.lines_.emplace_back(text);
    }

    std::mutex mutex_;
    std::vector<std::string> lines_;
};

struct handle_deleter {
    void operator()(_zeb_db_handle_t* handle) const { zeb_db_close(handle); }
};
using handle_ptr = std::unique_ptr<_zeb_db_handle_t, handle_deleter>;

handle_ptr open(const std::string& path) {
    _zeb_db_handle_t* opened = nullptr;
    EXPECT_EQ(zeb_db_open(path.c_str(), &opened), 0);
    return handle_ptr(opened);
}

// All of the file's rows or none.
void load(const std::string& database, const char* file) {
    const handle_ptr handle = open(database);
    EXPECT_EQ(zeb_db_begin_transaction(handle.get()), 0);
    if (parse_cds(handle.get(), file) == 0) {
        EXPECT_EQ(zeb_db_commit_transaction(handle.get()), 0);
    } else {
        EXPECT_EQ(zeb_db_rollback_transaction(handle.get()), 0);
    }
}

std::vector<std::string> rows_in(const std::string& database) {
    std::vector<std::string> all;
    for (const cds_parser::record_kind* kind : cds_parser::record_kinds) {
        const auto rows = sqlite_database(database).run(std::string("SELECT * FROM ") + kind->table);
        all.insert(all.end(), rows.begin(), rows.end());
    }
    return all;
}

std::vector<std::uint32_t> function_keys_in(const std::string& database) {
    constexpr const char* columns[] = {"FunKey"};
    const handle_ptr handle = open(database);
    zeb_db_result_t* result = nullptr;
    EXPECT_EQ(zeb_db_query(handle.get(), "PCIs", columns, 1, nullptr, nullptr, 0, "Id", &result), 0);
    std::vector<std::uint32_t> keys;
    while (zeb_db_result_step(result) == 9) {
        EXPECT_EQ(zeb_db_result_column_uint(result, 0, &keys.emplace_back()), 0);
    }
    zeb_db_free_result(result);
    return keys;
}

class Threads : public testing::Test {
protected:
    const scratch_folder folder;
    const shared_log log;
};

TEST_F(Threads, LoadDatabasesOfTheirOwn) {
    const auto rows_of_load = [this](int thread) {
        const std::string database = folder.file(std::to_string(thread) + ".db");
        load(database, file_of(thread));
        return rows_in(database);
    };
    const auto expected = in_turn(rows_of_load);
    EXPECT_THAT(expected[0], Not(IsEmpty()));
    EXPECT_EQ(in_threads(rows_of_load), expected);
    const std::string line = std::string("successfully parsed \"") + files[0] + '"';
    EXPECT_EQ(log.count(line), thread_count / static_cast<int>(files.size()) * (1 + rounds));
}

TEST_F(Threads, ReadAndDumpDocumentsOfTheirOwn) {
    const auto dump = [](int thread) {
        std::ostringstream text;
        cds_parser::document document;
        try {
            document.parse(file_of(thread));
            text << document;
        } catch (const sysipc::exception& refusal) {
            text << refusal.what();
        }
        return text.str();
    };
    const auto expected = in_turn(dump);
    EXPECT_THAT(expected, Each(Not(IsEmpty())));
    EXPECT_EQ(in_threads(dump), expected);
}

TEST_F(Threads, ReadOneDatabaseEachByAHandleOfItsOwn) {
    const std::string database = folder.file("shared.db");
    load(database, files[0]);
    const auto expected = function_keys_in(database);
    EXPECT_THAT(expected, Not(IsEmpty()));
    EXPECT_THAT(in_threads([&database](int) { return function_keys_in(database); }), Each(expected));
}

}  // namespace

// The program's own symbol goes before the C library's: nothing is left behind in /tmp.
extern "C" int system(const char*) {
    return 0;
}
