#pragma once

#include <string>

/// The safety net of the process, also for the ends at which no destructor runs: as long as it
/// lives, the user's terminal attributes, cursor and O_NONBLOCK of standard output are restored
/// however the process ends: by an exception, by exit(3) from within a library, or by a signal, of
/// which the process still dies. They are also restored while SIGTSTP stops the process. There is
/// one at a time.
class terminal_guard {
public:
    /// Remembers the attributes of standard input (nothing to restore if it is no terminal)
    /// and the flags of standard output, which waits from now on, and takes over every signal that
    /// ends a process and can be taken over, the real-time signals among them.
    terminal_guard();

    /// Gives all of it back, and the signals their default actions.
    ~terminal_guard();

    terminal_guard(const terminal_guard&) = delete;
    terminal_guard& operator=(const terminal_guard&) = delete;

    /// To be called before the cursor is hidden.
    /// @param show the sequence that shows it again, at most 63 bytes without its padding
    /// @param hide the one that hides it, likewise; written when a stopped process goes on
    static void rememberCursor(const std::string& show, const std::string& hide);
};
