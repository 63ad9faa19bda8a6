#pragma once

#include <array>
#include <csignal>

/// Keeps a dropped connection or an interrupt key from ending a firmware write half-way. As long
/// as it lives, SIGHUP, SIGINT and SIGQUIT are ignored, and so they are in a program started
/// meanwhile. One that came in for this process takes its usual effect when the hold ends.
class signal_hold {
public:
    signal_hold();
    ~signal_hold();

    signal_hold(const signal_hold&) = delete;
    signal_hold& operator=(const signal_hold&) = delete;

private:
    static constexpr std::array held{SIGHUP, SIGINT, SIGQUIT};

    sigset_t mask{};
    std::array<struct sigaction, held.size()> actions{};
};
