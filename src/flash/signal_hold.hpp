#pragma once

#include <array>
#include <csignal>

#include "support/blocked_signals.hpp"

/// Keeps a dropped connection or an interrupt key from ending a firmware write half-way. As long
/// as it lives, SIGHUP, SIGINT and SIGQUIT are ignored, also by a program that is started. One that
/// this process has received takes its usual effect when the hold ends. SIGTERM is not held, so
/// that a user can still end this process; the program that was started goes on alone.
class signal_hold {
public:
    signal_hold();
    ~signal_hold();

    signal_hold(const signal_hold&) = delete;
    signal_hold& operator=(const signal_hold&) = delete;

private:
    static constexpr std::array held{SIGHUP, SIGINT, SIGQUIT};

    // Blocked as well as ignored. Ignored, because the child is to inherit that. Blocked, because
    // Linux keeps a blocked signal even if it is ignored, so it is still pending when the old
    // action is back. Ignoring a signal discards a pending one: a signal that arrives between the
    // blocking and the ignoring is lost, but the flash is not.
    blocked_signals blocked{SIGHUP, SIGINT, SIGQUIT};
    std::array<struct sigaction, held.size()> actions{};
};
