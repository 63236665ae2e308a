// SPDX-License-Identifier: Apache-2.0

// Times a load into SQLite on the workstation platform, and its steps each for itself.

#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <vonk_log_workstation.h>
#include <zeb_db.h>
#include <zeb_db_workstation.h>
#include <zebdb_cds_parser.h>

#include <cstdio>
#include <cstdlib>
#include <ios>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <vector>

#include "step_benchmark.h"
#include "straight_inserts.h"
#include "workloads.h"

namespace {

constexpr const char* database_path = "load_benchmark.db";

struct handle_closer {
    void operator()(_zeb_db_handle_t* handle) const { zeb_db_close(handle); }
};
using handle_ptr = std::unique_ptr<_zeb_db_handle_t, handle_closer>;

struct connection_closer {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};
using connection_ptr = std::unique_ptr<sqlite3, connection_closer>;

handle_ptr open_inventory() {
    _zeb_db_handle_t* handle = nullptr;
    if (zeb_db_open(database_path, &handle) != 0) {
        throw std::runtime_error(std::string("cannot open ") + database_path);
    }
    return handle_ptr(handle);
}

connection_ptr connect_to_inventory() {
    sqlite3* connection = nullptr;
    const int rc = sqlite3_open(database_path, &connection);
    connection_ptr owner(connection);
    if (rc != SQLITE_OK) {
        throw std::runtime_error(std::string("cannot connect to ") + database_path);
    }
    return owner;
}

void empty_inventory(_zeb_db_handle_t* handle) {
    cds_parser::parser parser;
    if (zeb_db_begin_transaction(handle) != 0 || parser.wipe(handle) == 0 || zeb_db_commit_transaction(handle) != 0) {
        throw std::runtime_error("cannot empty the inventory");
    }
}

class null_buffer : public std::streambuf {
    int_type overflow(int_type byte) override { return traits_type::not_eof(byte); }
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

void drop_line(void*, vonk_log::level, const char*) {}

void time_plain_document(benchmark::State& state, const char* path) {
    while (state.KeepRunning()) {
        build_plain_document(path);
    }
}

void time_tree(benchmark::State& state, const char* path) {
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(read_tree(path));
    }
}

// The tables are empty when the clock starts, here and for the straight inserts.
void time_load(benchmark::State& state, const char* path) {
    const handle_ptr handle = open_inventory();
    while (state.KeepRunning()) {
        state.PauseTiming();
        empty_inventory(handle.get());
        state.ResumeTiming();
        load_inventory(handle.get(), path);
    }
}

void time_inserts(benchmark::State& state, const char* path) {
    load_inventory(open_inventory().get(), path);
    const connection_ptr connection = connect_to_inventory();
    const std::vector<stored_table> rows = capture_rows(connection.get());
    while (state.KeepRunning()) {
        state.PauseTiming();
        delete_rows(connection.get());
        state.ResumeTiming();
        insert_rows(connection.get(), rows);
    }
}

// What a load does besides, through the shell.
void time_marker(benchmark::State& state, const char*) {
    while (state.KeepRunning()) {
        if (std::system("touch /tmp/.dmdb_memory_deleted_flag") != 0) {
            throw std::runtime_error("cannot touch the marker file");
        }
    }
}

void time_dump(benchmark::State& state, const char* path) {
    cds_parser::document document;
    document.parse(path);
    null_buffer nowhere;
    std::ostream out(&nowhere);
    while (state.KeepRunning()) {
        out << document;
    }
}

}  // namespace

int main(int argc, char** argv) {
    vonk_log::set_sink(drop_line, nullptr);
    const int status = run_step_benchmarks(argc, argv,
                                           {
                                               {"plain", time_plain_document},
                                               {"document", time_document},
                                               {"tree", time_tree},
                                               {"load", time_load},
                                               {"inserts", time_inserts},
                                               {"marker", time_marker},
                                               {"dump", time_dump},
                                           });
    std::remove(database_path);
    return status;
}
