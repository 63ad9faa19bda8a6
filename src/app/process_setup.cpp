#include "app/process_setup.hpp"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>

namespace {

constexpr rlim_t mostDescriptors = 65'536;

/// Larger than any drawing of a menu, so that one drawing is one write.
constexpr std::size_t outputBufferSize = 65'536;
std::array<char, outputBufferSize> outputBuffer;

void resetSignals() {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGCHLD, SIG_DFL);
}

void raiseDescriptorLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = descriptorLimit(limit);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

}  // namespace

void setUpProcess() {
    resetSignals();
    raiseDescriptorLimit();
    std::setvbuf(stdout, outputBuffer.data(), _IOFBF, outputBuffer.size());
}

rlim_t descriptorLimit(const rlimit& current) {
    return std::max(current.rlim_cur, std::min(current.rlim_max, mostDescriptors));
}
