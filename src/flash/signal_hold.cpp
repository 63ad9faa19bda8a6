#include "flash/signal_hold.hpp"

// The signals are blocked as well as ignored. Ignored is what the child is to inherit; and Linux
// keeps a signal that is both pending (a blocked signal is never thrown away, see signal(7)), so
// that it is still there when the old action is back. Blocked first and unblocked last, or one
// that comes in between would be lost.

signal_hold::signal_hold() {
    sigset_t block;
    sigemptyset(&block);
    for (const int signal : held) {
        sigaddset(&block, signal);
    }
    sigprocmask(SIG_BLOCK, &block, &mask);
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    for (std::size_t i = 0; i < held.size(); ++i) {
        sigaction(held[i], &ignore, &actions[i]);
    }
}

signal_hold::~signal_hold() {
    for (std::size_t i = 0; i < held.size(); ++i) {
        sigaction(held[i], &actions[i], nullptr);
    }
    sigprocmask(SIG_SETMASK, &mask, nullptr);
}
