#include "package/interruption.hpp"

#include <sys/signalfd.h>

#include <csignal>
#include <initializer_list>

#include "package/descriptor.hpp"
#include "package/system_call.hpp"

namespace {

constexpr std::initializer_list<int> endings{SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM};

/// Blocked, a signal is kept even if it is ignored, as below nohup(1): leave that one out.
sigset_t endingSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : endings) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            sigaddset(&set, signal);
        }
    }
    return set;
}

}  // namespace

interruption::interruption() : held(endings) {}

void throwIfInterrupted() {
    sigset_t pending;
    sigpending(&pending);
    const sigset_t set = endingSignals();
    for (const int signal : endings) {
        if (sigismember(&pending, signal) == 1 && sigismember(&set, signal) == 1) {
            throw interrupted();
        }
    }
}

void awaitEvents(std::vector<pollfd> events) {
    const sigset_t set = endingSignals();
    const descriptor signals(signalfd(-1, &set, SFD_CLOEXEC), "cannot wait for", "signals");
    events.push_back({signals.get(), POLLIN, 0});
    checked(poll(events.data(), events.size(), -1), "cannot wait for", "a program");
    throwIfInterrupted();
}
