#pragma once

#include <csignal>
#include <initializer_list>

/// Keeps signals pending as long as it lives; see sigprocmask(2).
class blocked_signals {
public:
    explicit blocked_signals(std::initializer_list<int> signals);
    ~blocked_signals();

    blocked_signals(const blocked_signals&) = delete;
    blocked_signals& operator=(const blocked_signals&) = delete;

private:
    sigset_t previous{};
};
