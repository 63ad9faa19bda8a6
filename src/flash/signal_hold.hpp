#pragma once

#include <array>
#include <csignal>

#include "support/blocked_signals.hpp"

/// Keeps a dropped connection or an interrupt key from ending a firmware write half-way. As long
/// as it lives, SIGHUP, SIGINT and SIGQUIT are ignored, and so they are in a program started
/// meanwhile. One that came in for this process takes its usual effect when the hold ends. SIGTERM
/// is not held: who means it must be able to end the program; the one started goes on alone.
class signal_hold {
public:
    signal_hold();
    ~signal_hold();

    signal_hold(const signal_hold&) = delete;
    signal_hold& operator=(const signal_hold&) = delete;

private:
    static constexpr std::array held{SIGHUP, SIGINT, SIGQUIT};

    // Blocked as well as ignored. Ignored is what the child is to inherit; and a signal that is
    // both is kept by Linux (it never throws a blocked one away, as it may be unblocked with
    // another action), so that it is still there when the old action is back. Ignoring a
    // signal drops one that is already pending: one that comes in after the blocking and before
    // the ignoring is lost, the flash is not.
    blocked_signals blocked{SIGHUP, SIGINT, SIGQUIT};
    std::array<struct sigaction, held.size()> actions{};
};
