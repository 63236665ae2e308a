// SPDX-License-Identifier: Apache-2.0

#include "step_benchmark.h"

#include <cstddef>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "workloads.h"

namespace {

void register_step(const timed_step& step, const std::string& path, std::size_t components) {
    const auto timed = [step, path, components](benchmark::State& state) {
        step.time(state, path.c_str());
        state.counters["time/component"] =
            benchmark::Counter(static_cast<double>(components),
                               benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    };
    const std::string name = step.name + (':' + path);
    // NOLINTNEXTLINE(readability-redundant-string-cstr): benchmark 1.7 takes no std::string
    benchmark::RegisterBenchmark(name.c_str(), timed)->UseRealTime()->Unit(benchmark::kMillisecond);
}

}  // namespace

void time_document(benchmark::State& state, const char* path) {
    while (state.KeepRunning()) {
        build_xml_document(path);
    }
}

int run_step_benchmarks(int argc, char** argv, const std::vector<timed_step>& steps) {
    try {
        benchmark::Initialize(&argc, argv);
        if (argc < 2) {
            std::cerr << "usage: " << argv[0] << " [--benchmark_OPTION...] FILE...\n";
            return 2;
        }
        for (int i = 1; i < argc; ++i) {
            const std::size_t components = read_tree(argv[i]);
            for (const timed_step& step : steps) {
                register_step(step, argv[i], components);
            }
        }
        benchmark::RunSpecifiedBenchmarks();
    } catch (const std::exception& error) {
        std::cerr << argv[0] << ": " << error.what() << '\n';
        return 2;
    }
    return 0;
}
