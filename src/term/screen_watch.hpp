#pragma once

/// Notices, as long as it lives, that what is on the screen may not be there any more: the window
/// has got another size, or the process was stopped and goes on. Either interrupts a wait for a
/// key. There is one at a time.
class screen_watch {
public:
    screen_watch();
    ~screen_watch();

    screen_watch(const screen_watch&) = delete;
    screen_watch& operator=(const screen_watch&) = delete;

    /// @return true when something has happened since the last call
    static bool hasChanged();
};
