#include "support/blocked_signals.hpp"

blocked_signals::blocked_signals(std::initializer_list<int> signals) {
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int signal : signals) {
        sigaddset(&blocked, signal);
    }
    sigprocmask(SIG_BLOCK, &blocked, &previous);
}

blocked_signals::~blocked_signals() { sigprocmask(SIG_SETMASK, &previous, nullptr); }
