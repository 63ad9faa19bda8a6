// Linked into everything of the coverage build, the program, too, and into nothing else. A process
// that dies of a signal takes its line counters with it, and so the way it dies would never count.
// Here the handlers of the terminal guard get a frame that writes the counters when they are done.

#include <array>
#include <csignal>

extern "C" {
// From libgcov, which has no header.
void __gcov_dump();                                                     // NOLINT
void __gcov_reset();                                                    // NOLINT
int __real_sigaction(int, const struct sigaction*, struct sigaction*);  // NOLINT
int __real_sigprocmask(int, const sigset_t*, sigset_t*);                // NOLINT
}

namespace {

std::array<void (*)(int), NSIG> handlers{};

/// Runs the handler that was asked for. The handler re-raises the signal; blocked so far, it is
/// delivered as soon as this returns.
void runHandlerAndKeepCounters(int signal) {
    handlers.at(static_cast<std::size_t>(signal))(signal);
    sigset_t pending;
    sigpending(&pending);
    if (sigismember(&pending, signal) == 1) {
        __gcov_dump();
        __gcov_reset();  // or a process that lives on could not write them again
    }
}

}  // namespace

/// Takes the place of sigaction(2), see --wrap in ld(1), and tells nobody about the frame.
extern "C" int __wrap_sigaction(int signal, const struct sigaction* action,  // NOLINT
                                struct sigaction* previous) {
    auto& handler = handlers.at(static_cast<std::size_t>(signal));
    const auto previousHandler = handler;
    struct sigaction framed {};
    const bool isFramed = action != nullptr && (action->sa_flags & SA_SIGINFO) == 0 &&
                          action->sa_handler != SIG_DFL && action->sa_handler != SIG_IGN;
    if (isFramed) {
        framed = *action;
        framed.sa_handler = runHandlerAndKeepCounters;
        handler = action->sa_handler;
    }
    const int result = __real_sigaction(signal, isFramed ? &framed : action, previous);
    if (previous != nullptr && previous->sa_handler == runHandlerAndKeepCounters) {
        previous->sa_handler = previousHandler;
    }
    return result;
}

/// A signal that is held back may end the process as soon as it is not.
extern "C" int __wrap_sigprocmask(int how, const sigset_t* set, sigset_t* previous) {  // NOLINT
    sigset_t pending;
    sigpending(&pending);
    if (sigisemptyset(&pending) == 0) {
        __gcov_dump();
        __gcov_reset();
    }
    return __real_sigprocmask(how, set, previous);
}
