#pragma once

#include <csignal>

/// Notices, as long as it lives, that what is on the screen may not be there any more: the window
/// has got another size, or the process was stopped and goes on. Both signals are blocked: they
/// come in during a wait that lets them in, which they interrupt, and never between the last look
/// and the wait. There is one at a time.
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
