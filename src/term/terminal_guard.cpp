#include "term/terminal_guard.hpp"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

/// The signals whose default action does not end the process; see signal(7).
constexpr std::array harmlessSignals{SIGCHLD, SIGCONT, SIGURG, SIGWINCH, SIGTSTP, SIGTTIN, SIGTTOU};

constexpr std::size_t longestSequence = 63;
constexpr int patienceMilliseconds = 100;

struct sequence_t {
    std::array<char, longestSequence> bytes{};
    volatile std::sig_atomic_t length = 0;
};

/// How standard input reads keys, and whether standard output waits.
struct terminal_mode_t {
    termios attributes{};
    bool isTerminal = false;
    int outputFlags = 0;
};

// Read by the signal handlers, hence plain static storage.
terminal_mode_t userMode{};
volatile std::sig_atomic_t userModeKnown = 0;
sequence_t cursorShown{};
sequence_t cursorHidden{};

/// Tells the signal handlers that what was written before is theirs to read.
void announce(volatile std::sig_atomic_t& announced, std::size_t value) {
    std::atomic_signal_fence(std::memory_order_release);
    announced = static_cast<std::sig_atomic_t>(value);
}

// The functions down to restoreAndStop are safe in a signal handler.

terminal_mode_t currentMode() {
    terminal_mode_t mode;
    mode.isTerminal = tcgetattr(STDIN_FILENO, &mode.attributes) == 0;
    mode.outputFlags = fcntl(STDOUT_FILENO, F_GETFL);
    return mode;
}

void setMode(const terminal_mode_t& mode) {
    if (mode.isTerminal) {
        tcsetattr(STDIN_FILENO, TCSANOW, &mode.attributes);
    }
    fcntl(STDOUT_FILENO, F_SETFL, mode.outputFlags);
}

void writeSequence(const sequence_t& sequence) {
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    if (poll(&output, 1, patienceMilliseconds) != 1 || output.revents != POLLOUT) {
        return;  // nobody reads the terminal, or the pipe in its place
    }
    const auto length = static_cast<std::size_t>(sequence.length);
    std::atomic_signal_fence(std::memory_order_acquire);
    if (write(STDOUT_FILENO, sequence.bytes.data(), length) < 0) {
        return;  // the terminal is gone: nobody to show a cursor to
    }
}

void showCursor() {
    if (cursorShown.length == 0) {
        return;
    }
    // Output that the user has stopped with Ctrl-S goes on, or this would wait for it. TCOON alone
    // takes back a TCOOFF only.
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
    if (userModeKnown != 0) {
        std::atomic_signal_fence(std::memory_order_acquire);
        setMode(userMode);
    }
    showCursor();
    sigprocmask(SIG_SETMASK, &previous, nullptr);
}

/// Restores the terminal and lets the signal have its default action once the handler returns. The
/// cursor's sequence may go to a pipe that nobody reads; the process must not die of that instead.
void restoreAndDie(int signal) {
    std::signal(SIGPIPE, SIG_IGN);
    restoreTerminal();
    std::signal(signal, SIG_DFL);
    raise(signal);
}

/// A signal that a parent has ignored, as nohup(1) does, is taken over, too: children would inherit
/// that. Refused, as it should be, for SIGKILL, SIGSTOP and what the C library keeps for itself.
void setFatalSignalAction(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigfillset(&action.sa_mask);
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        if (std::find(harmlessSignals.begin(), harmlessSignals.end(), signal) ==
            harmlessSignals.end()) {
            sigaction(signal, &action, nullptr);
        }
    }
}

/// A child that is running then is waited for again after the stop.
void setStopSignalAction(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(SIGTSTP, &action, nullptr);
}

/// Stops as usual, with the terminal given back until it is continued. The process then takes its
/// own mode back; in the background that stops it again, as it should.
void restoreAndStop(int signal) {
    const int number = errno;
    const terminal_mode_t mode = currentMode();
    restoreTerminal();
    const auto known = static_cast<std::size_t>(userModeKnown);
    userModeKnown = 0;  // from now on the mode is the shell's: nobody who ends here changes it
    setStopSignalAction(SIG_DFL);
    raise(signal);
    sigset_t stop;
    sigset_t previous;
    sigemptyset(&stop);
    sigaddset(&stop, signal);
    sigprocmask(SIG_UNBLOCK, &stop, &previous);  // stopped here
    sigprocmask(SIG_SETMASK, &previous, nullptr);
    setStopSignalAction(restoreAndStop);
    announce(userModeKnown, known);
    setMode(mode);
    // Not every screen is drawn again after a stop: the output of a child, for one, is not.
    writeSequence(cursorHidden);
    errno = number;
}

void remember(sequence_t& sequence, const std::string& text) {
    announce(sequence.length, 0);
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
    announce(sequence.length, length);
}

/// Non-blocking output would drop half of a drawing. The last program on the terminal may have left
/// it so, and the shell may rely on it.
void makeOutputWait() {
    if ((userMode.outputFlags & O_NONBLOCK) != 0) {
        fcntl(STDOUT_FILENO, F_SETFL, userMode.outputFlags & ~O_NONBLOCK);
    }
}

}  // namespace

terminal_guard::terminal_guard() {
    // In the background the mode is that of the shell's prompt. Asked for anything, the terminal
    // stops the process there until it is the user's turn.
    tcflow(STDIN_FILENO, TCOON);
    userMode = currentMode();
    announce(userModeKnown, 1);
    std::atexit(restoreTerminal);
    setFatalSignalAction(restoreAndDie);
    setStopSignalAction(restoreAndStop);
    makeOutputWait();
}

terminal_guard::~terminal_guard() {
    // First of all, or the end of a stop during the next lines would hide the cursor for good.
    cursorHidden.length = 0;
    // The object that hid the cursor has ended and shown it again, if that could be written.
    if (std::fflush(stdout) == 0) {
        cursorShown.length = 0;
    }
    restoreTerminal();
    cursorShown.length = 0;
    userModeKnown = 0;
    setFatalSignalAction(SIG_DFL);
    setStopSignalAction(SIG_DFL);
}

void terminal_guard::rememberCursor(const std::string& show, const std::string& hide) {
    remember(cursorShown, show);
    remember(cursorHidden, hide);
}
