#pragma once

#include <sys/types.h>
#include <termios.h>

/// Keeps what a child program does to the terminal on standard input from outliving it: the
/// attributes and the foreground process group are put back when this object ends.
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
};
