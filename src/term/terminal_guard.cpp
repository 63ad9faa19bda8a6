#include "term/terminal_guard.hpp"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

/// The standard signals whose default action ends the process and which can be taken over.
constexpr std::array fatalSignals{SIGHUP,  SIGINT,  SIGQUIT, SIGILL,   SIGTRAP,   SIGABRT,
                                  SIGBUS,  SIGFPE,  SIGUSR1, SIGSEGV,  SIGUSR2,   SIGPIPE,
                                  SIGALRM, SIGTERM, SIGXCPU, SIGXFSZ,  SIGVTALRM, SIGPROF,
                                  SIGIO,   SIGPWR,  SIGSYS,  SIGSTKFLT};

constexpr std::size_t longestSequence = 63;
constexpr int patienceMilliseconds = 100;

struct sequence_t {
    std::array<char, longestSequence> bytes{};
    volatile std::sig_atomic_t length = 0;
};

// Read by the signal handlers, hence plain static storage.
termios userAttributes{};
volatile std::sig_atomic_t attributesKnown = 0;
sequence_t cursorShown{};
sequence_t cursorHidden{};

// The functions down to restoreAndStop are safe in a signal handler.

void restoreAttributes() {
    if (attributesKnown != 0) {
        tcsetattr(STDIN_FILENO, TCSANOW, &userAttributes);
    }
}

void writeSequence(const sequence_t& sequence) {
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    if (poll(&output, 1, patienceMilliseconds) != 1) {
        return;  // nobody reads what the terminal shows
    }
    const auto length = static_cast<std::size_t>(sequence.length);
    if (write(STDOUT_FILENO, sequence.bytes.data(), length) < 0) {
        return;  // the terminal is gone: nobody to show a cursor to
    }
}

void showCursor() {
    if (cursorShown.length == 0) {
        return;
    }
    // Output that the user has stopped with Ctrl-S goes on, or this would wait for it.
    tcflow(STDOUT_FILENO, TCOOFF);
    tcflow(STDOUT_FILENO, TCOON);
    writeSequence(cursorShown);
}

/// Keeps SIGTTOU blocked, or a process in the background would be stopped here instead of ending.
void restoreTerminal() {
    sigset_t stop;
    sigset_t previous;
    sigemptyset(&stop);
    sigaddset(&stop, SIGTTOU);
    sigprocmask(SIG_BLOCK, &stop, &previous);
    restoreAttributes();
    showCursor();
    sigprocmask(SIG_SETMASK, &previous, nullptr);
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

/// A child that runs meanwhile is waited for again behind the stop.
void setStopSignalAction(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(SIGTSTP, &action, nullptr);
}

/// Stops as usual, with the terminal given back meanwhile. The attributes of before come back at
/// once; in the background that stops the process again, as it should.
void restoreAndStop(int signal) {
    const int number = errno;
    termios attributes{};
    const bool known = tcgetattr(STDIN_FILENO, &attributes) == 0;
    restoreTerminal();
    setStopSignalAction(SIG_DFL);
    raise(signal);
    sigset_t stop;
    sigset_t previous;
    sigemptyset(&stop);
    sigaddset(&stop, signal);
    sigprocmask(SIG_UNBLOCK, &stop, &previous);  // stopped here
    sigprocmask(SIG_SETMASK, &previous, nullptr);
    setStopSignalAction(restoreAndStop);
    if (known) {
        tcsetattr(STDIN_FILENO, TCSANOW, &attributes);
    }
    // Not every screen is drawn anew behind a stop: what a child shows, for one, is not.
    writeSequence(cursorHidden);
    errno = number;
}

void remember(sequence_t& sequence, const std::string& text) {
    std::size_t length = 0;
    bool padding = false;
    for (std::size_t i = 0; i < text.size() && length < sequence.bytes.size(); ++i) {
        // A "$<5>" in a sequence is a pause for slow terminals, not to be written.
        padding = padding || text.compare(i, 2, "$<") == 0;
        if (!padding) {
            sequence.bytes[length++] = text[i];
        }
        padding = padding && text[i] != '>';
    }
    sequence.length = static_cast<std::sig_atomic_t>(length);
}

}  // namespace

terminal_guard::terminal_guard() {
    attributesKnown = tcgetattr(STDIN_FILENO, &userAttributes) == 0 ? 1 : 0;
    std::atexit(restoreTerminal);
    setFatalSignalAction(restoreAndDie);
    setStopSignalAction(restoreAndStop);
}

terminal_guard::~terminal_guard() {
    // Whoever hid the cursor is gone by now and has shown it again, if that can be written.
    if (std::fflush(stdout) == 0) {
        cursorShown.length = 0;
    }
    restoreTerminal();
    cursorShown.length = 0;
    cursorHidden.length = 0;
    attributesKnown = 0;
    setFatalSignalAction(SIG_DFL);
    setStopSignalAction(SIG_DFL);
}

void terminal_guard::rememberCursor(const std::string& show, const std::string& hide) {
    remember(cursorShown, show);
    remember(cursorHidden, hide);
}
