#include "term/terminal_guard.hpp"

#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace {

/// The signals whose default action ends the process and which can be taken over.
constexpr std::array fatalSignals{SIGHUP,  SIGINT,  SIGQUIT, SIGILL,  SIGABRT,
                                  SIGBUS,  SIGFPE,  SIGUSR1, SIGSEGV, SIGUSR2,
                                  SIGPIPE, SIGALRM, SIGTERM, SIGXCPU, SIGXFSZ};

constexpr std::size_t longestSequence = 63;

// Read by the signal handler, hence plain static storage.
termios userAttributes{};
volatile std::sig_atomic_t attributesKnown = 0;
std::array<char, longestSequence> cursorSequence{};
volatile std::sig_atomic_t cursorLength = 0;

/// Safe in a signal handler. SIGTTOU is held back, or a process in the background would be
/// stopped here instead of ending.
void restoreAttributes() {
    if (attributesKnown == 0) {
        return;
    }
    sigset_t stop;
    sigset_t previous;
    sigemptyset(&stop);
    sigaddset(&stop, SIGTTOU);
    sigprocmask(SIG_BLOCK, &stop, &previous);
    tcsetattr(STDIN_FILENO, TCSANOW, &userAttributes);
    sigprocmask(SIG_SETMASK, &previous, nullptr);
}

void showCursor() {
    const auto length = static_cast<std::size_t>(cursorLength);
    cursorLength = 0;
    if (length > 0 && write(STDOUT_FILENO, cursorSequence.data(), length) < 0) {
        return;  // the terminal is gone: nobody to show a cursor to
    }
}

void restoreTerminal() {
    restoreAttributes();
    showCursor();
}

/// Restores the terminal and lets the signal have its default action once the handler returns.
void restoreAndDie(int signal) {
    const int number = errno;
    restoreTerminal();
    std::signal(signal, SIG_DFL);
    raise(signal);
    errno = number;
}

void setFatalSignalAction(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigfillset(&action.sa_mask);
    for (const int signal : fatalSignals) {
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace

terminal_guard::terminal_guard() {
    attributesKnown = tcgetattr(STDIN_FILENO, &userAttributes) == 0 ? 1 : 0;
    std::atexit(restoreTerminal);
    setFatalSignalAction(restoreAndDie);
}

terminal_guard::~terminal_guard() {
    // Whoever hid the cursor is gone by now and has shown it again.
    cursorLength = 0;
    restoreAttributes();
    attributesKnown = 0;
    setFatalSignalAction(SIG_DFL);
}

void terminal_guard::rememberCursor(const std::string& showCursor) {
    std::size_t length = 0;
    bool padding = false;
    for (std::size_t i = 0; i < showCursor.size() && length < cursorSequence.size(); ++i) {
        // A "$<5>" in a sequence is a pause for slow terminals, not to be written.
        padding = padding || showCursor.compare(i, 2, "$<") == 0;
        if (!padding) {
            cursorSequence[length++] = showCursor[i];
        }
        padding = padding && showCursor[i] != '>';
    }
    cursorLength = static_cast<std::sig_atomic_t>(length);
}
