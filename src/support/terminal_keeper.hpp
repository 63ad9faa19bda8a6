#pragma once

#include <sys/types.h>
#include <termios.h>

/// Undoes what a child program does to the terminal: when this object ends, it restores the
/// attributes and the foreground process group of the terminal on standard input, and the status
/// flags of standard output (O_NONBLOCK, which is shared with the child).
class terminal_keeper {
public:
    terminal_keeper();
    ~terminal_keeper();

    terminal_keeper(const terminal_keeper&) = delete;
    terminal_keeper& operator=(const terminal_keeper&) = delete;

private:
    void takeForeground() const;

    termios attributes{};
    bool isTerminal;
    pid_t foreground;
    int outputFlags;
};
