// SPDX-License-Identifier: Apache-2.0

/// What the benchmark programs share: each times steps of a load on the CDS files that its command line names.
#ifndef BENCH_STEP_BENCHMARK_H
#define BENCH_STEP_BENCHMARK_H

#include <benchmark/benchmark.h>

#include <vector>

/// A step and how to time it: `time` does the step on the file at `path` as often as `state` asks for. Its name in the
/// report is the step's and the path with a colon between.
struct timed_step {
    const char* name;
    void (*time)(benchmark::State& state, const char* path);
};

/// Builds the XML library's document of the file alone.
void time_document(benchmark::State& state, const char* path);

/// Does the work of a benchmark program's main(): every step on every file of the command line, with the real time of
/// each and what that is for each component of the file.
int run_step_benchmarks(int argc, char** argv, const std::vector<timed_step>& steps);

#endif
