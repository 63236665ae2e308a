// SPDX-License-Identifier: Apache-2.0

// Times a load whose rows and log lines are dropped: the library and the XML library alone.

#include <benchmark/benchmark.h>
#include <zeb_db.h>
#include <zeb_db_workstation.h>

#include "step_benchmark.h"
#include "workloads.h"

namespace {

void time_load(benchmark::State& state, const char* path) {
    _zeb_db_handle_t* handle = nullptr;
    zeb_db_open("", &handle);
    while (state.KeepRunning()) {
        load_inventory(handle, path);
    }
}

}  // namespace

int main(int argc, char** argv) {
    return run_step_benchmarks(argc, argv, {{"document", time_document}, {"load_dropping", time_load}});
}
