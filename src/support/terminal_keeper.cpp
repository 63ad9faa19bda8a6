#include "support/terminal_keeper.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "support/blocked_signals.hpp"

terminal_keeper::terminal_keeper()
    : isTerminal(tcgetattr(STDIN_FILENO, &attributes) == 0),
      foreground(tcgetpgrp(STDIN_FILENO)),
      outputFlags(fcntl(STDOUT_FILENO, F_GETFL)) {}

terminal_keeper::~terminal_keeper() {
    fcntl(STDOUT_FILENO, F_SETFL, outputFlags);
    if (isTerminal) {
        takeForeground();
        tcsetattr(STDIN_FILENO, TCSANOW, &attributes);
    }
}

/// A child that does job control may leave the terminal to a process group that it made. But the
/// terminal is not taken from the session's shell, which has it because the user put this program
/// into the background.
void terminal_keeper::takeForeground() const {
    const pid_t current = tcgetpgrp(STDIN_FILENO);
    if (foreground != getpgrp() || current == foreground || current == getsid(0)) {
        return;
    }
    const blocked_signals untilTaken{SIGTTOU};  // or the process is stopped for asking
    tcsetpgrp(STDIN_FILENO, foreground);
}
