#pragma once

#include <functional>

/// Waits until one descriptor can be read; see epoll(7).
class input_watch {
public:
    static constexpr int noTimeLimit = -1;

    /// @param descriptor what to wait for. A descriptor that cannot be watched (a regular file)
    /// is no error: every wait then answers "not readable" at once.
    explicit input_watch(int descriptor);
    ~input_watch();

    input_watch(const input_watch&) = delete;
    input_watch& operator=(const input_watch&) = delete;

    /// A signal that the caller has blocked arrives during the wait, and only then: none is lost
    /// between the caller's last look and the wait. See epoll_pwait(2).
    /// @param milliseconds how long to wait, or noTimeLimit
    /// @param settle called before the wait and after a signal has interrupted it. It returns true
    /// when there was something to deal with, so that the interruption does not count.
    /// @return true when the descriptor can be read, end of file included; false when the time is
    /// over or the wait failed. A wait that a signal interrupts is repeated, up to 10 waits in all.
    bool waitReadable(
        int milliseconds, const std::function<bool()>& settle = [] { return false; }) const;

    /// Ends the watch, but leaves its epoll descriptor open for the rest of the process: that each
    /// key takes a descriptor is part of how the program behaves, and is kept. It does no harm, as
    /// it watches nothing, no child inherits it, and setUpProcess makes room for it.
    void leaveOpen();

private:
    int watched;
    int instance;
};
