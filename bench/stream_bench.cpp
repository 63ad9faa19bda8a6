// Reading a key and telling what it is.

#include <benchmark/benchmark.h>
#include <termios.h>
#include <unistd.h>

#include "support/stream.hpp"
#include "surroundings.hpp"

namespace {

struct open_stream : stream {
    using stream::settleBeforeWait;
};

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

/// Typed as soon as it is waited for, as earlier ones are thrown away: what the terminal takes to
/// pass it on is part of the time. Every key leaves a descriptor open, hence not too many of them.
void readTypedKey(benchmark::State& state, const char* key) {
    const surroundings around;
    termios attributes{};
    tcgetattr(STDIN_FILENO, &attributes);
    attributes.c_lflag &= ~static_cast<tcflag_t>(ISIG | ICANON | ECHO);
    attributes.c_cc[VMIN] = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &attributes);
    open_stream input;
    input.settleBeforeWait = [&around, key] {
        around.type(key);
        return false;
    };
    const int firstLeftOpen = dup(STDIN_FILENO);
    for (auto _ : state) {
        readAndTell(input);
    }
    close_range(static_cast<unsigned>(firstLeftOpen), ~0U, 0);
}
BENCHMARK_CAPTURE(readTypedKey, digit, "4")->Iterations(500);
BENCHMARK_CAPTURE(readTypedKey, arrow, "\x1b[B")->Iterations(500);

}  // namespace
