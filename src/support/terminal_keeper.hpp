#pragma once

#include <sys/types.h>
#include <termios.h>

/// Keeps what a child program does to the terminal from outliving it: the attributes and the
/// foreground process group of that on standard input, and the status flags of standard output
/// (O_NONBLOCK, which is shared with the child) are put back when this object ends.
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
