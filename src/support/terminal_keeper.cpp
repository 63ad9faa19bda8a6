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

/// A child with job control of its own may leave the terminal to a group that it made. Not taken
/// from the session's shell, though: that has it because the user put this program aside.
void terminal_keeper::takeForeground() const {
    const pid_t current = tcgetpgrp(STDIN_FILENO);
    if (foreground != getpgrp() || current == foreground || current == getsid(0)) {
        return;
    }
    const blocked_signals untilTaken{SIGTTOU};  // or the process is stopped for asking
    tcsetpgrp(STDIN_FILENO, foreground);
}
