#pragma once

#include <csignal>

/// Notices, as long as it lives, when the screen may no longer show what was drawn: the window has
/// another size, or the process was stopped and goes on. Both signals are blocked, so they arrive
/// only during a wait that lets them in, and interrupt it, and never between the last look and the
/// wait. There is one at a time.
class screen_watch {
public:
    screen_watch();
    ~screen_watch();

    screen_watch(const screen_watch&) = delete;
    screen_watch& operator=(const screen_watch&) = delete;

    /// @return true when something has happened since the last call
    static bool hasChanged();

private:
    sigset_t previous{};
};
