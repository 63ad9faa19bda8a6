#pragma once

#include <string>

/// The safety net of the process, for the ends at which no destructor runs, too: as long as it
/// lives, the user's terminal attributes, cursor and O_NONBLOCK of standard output are given back
/// however the process ends, be it by an exception, by exit(3) from within a library, or by a
/// signal, of which the process still dies. While the process is stopped by SIGTSTP the terminal is
/// the user's, too. There is one at a time.
class terminal_guard {
public:
    /// Remembers the attributes of standard input (nothing to give back where it is no terminal)
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
