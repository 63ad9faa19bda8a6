// Reading a release file.

#include <benchmark/benchmark.h>

#include "release/release_info.hpp"
#include "surroundings.hpp"

namespace {

/// The argument is the number of lines that no value is in.
void readReleaseFile(benchmark::State& state) {
    const surroundings around(state.range(0));
    for (auto _ : state) {
        release_info information;
        benchmark::DoNotOptimize(information);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(readReleaseFile)->Arg(0)->Arg(1'000)->Arg(100'000);

}  // namespace
