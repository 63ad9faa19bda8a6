// Recognising a key. Reading one needs a terminal, so it is measured with the program itself.

#include <benchmark/benchmark.h>

#include "support/stream.hpp"

namespace {

void readAndTell(stream& input) {
    input.readInput();
    benchmark::DoNotOptimize(input.isEscapeSequence() || input.isNumber() || input.isEnter());
}

void readQueuedKey(benchmark::State& state) {
    stream input;
    for (auto _ : state) {
        input.queueInput("\x1b[B");
        readAndTell(input);
    }
}
BENCHMARK(readQueuedKey);

}  // namespace
