#include "flash/signal_hold.hpp"

signal_hold::signal_hold() {
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
}
