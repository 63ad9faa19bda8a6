#include "app/process_setup.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <initializer_list>

namespace {

constexpr rlim_t mostDescriptors = 65'536;

/// Larger than any drawing of a menu, so that one drawing is one write.
constexpr std::size_t outputBufferSize = 65'536;
std::array<char, outputBufferSize> outputBuffer;

/// Child programs would inherit what a parent has blocked or ignored.
void resetSignals() {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int signal : {SIGCHLD, SIGTTIN, SIGTTOU, SIGURG, SIGWINCH, SIGCONT}) {
        std::signal(signal, SIG_DFL);
    }
}

/// Otherwise, the next file that is opened would become standard error: in a core program, that
/// may be the firmware image, and its messages would be written into the image.
void openStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // open(2) takes the lowest free number: this one. If there is no null device, the root
        // folder takes its place, which cannot be written to either.
        const int mode = descriptor == STDIN_FILENO ? O_RDONLY : O_WRONLY;
        const bool isOpen = fcntl(descriptor, F_GETFD) != -1 || open("/dev/null", mode) != -1;
        static_cast<void>(isOpen || open("/", O_PATH) != -1);
    }
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
    raiseDescriptorLimit();
    openStandardDescriptors();
    resetSignals();
    std::setvbuf(stdout, outputBuffer.data(), _IOFBF, outputBuffer.size());
}

rlim_t descriptorLimit(const rlimit& current) {
    return std::max(current.rlim_cur, std::min(current.rlim_max, mostDescriptors));
}
