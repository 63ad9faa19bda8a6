#include "term/terminal_guard.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "harness/job.hpp"
#include "harness/terminal_session.hpp"
#include "harness/test_surroundings.hpp"

namespace {

void makeOutputABrokenPipe() {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) == 0) {
        close(ends[0]);
        dup2(ends[1], STDOUT_FILENO);
        close(ends[1]);
    }
}

bool doesOutputWait() { return (fcntl(STDOUT_FILENO, F_GETFL) & O_NONBLOCK) == 0; }

void waitForSignals() {
    for (;;) {
        pause();
    }
}

/// A guarded process in raw mode with a hidden cursor, which then does something.
std::function<std::string()> guarded(const std::function<void()>& action) {
    return [action] {
        const terminal_guard guard;
        setRawMode();
        terminal_guard::rememberCursor("\x1b[?25h$<5/>!", "\x1b[?25l$<5/>");
        std::fputs("\x1b[?25l", stdout);
        std::fflush(stdout);
        action();
        return std::string("returned");
    };
}

}  // namespace

class terminal_guard_signal_test : public testing::TestWithParam<int> {};

/// @return every signal that ends a process by default and leaves it a chance to do something
std::vector<int> fatalSignals() {
    const std::vector<int> others{SIGKILL, SIGSTOP, SIGTSTP, SIGTTIN, SIGTTOU,
                                  SIGCHLD, SIGCONT, SIGURG,  SIGWINCH};
    std::vector<int> fatal;
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        const bool isTheLibrarys = signal > SIGSYS && signal < SIGRTMIN;
        if (!isTheLibrarys && std::count(others.begin(), others.end(), signal) == 0) {
            fatal.push_back(signal);
        }
    }
    return fatal;
}

TEST_P(terminal_guard_signal_test, GivesTheTerminalBackAndDiesOfTheSignal) {
    terminal_session session(guarded(waitForSignals));
    session.await([&] { return !session.terminal().isCooked(); }, "the raw mode");
    session.await([&] { return !session.screen().isCursorVisible(); }, "the hidden cursor");
    session.signal(GetParam());
    const int status = session.awaitEnd();
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(GetParam(), WTERMSIG(status));
    EXPECT_TRUE(session.terminal().isCooked());
    EXPECT_TRUE(session.screen().isCursorVisible());
}

INSTANTIATE_TEST_SUITE_P(Fatal, terminal_guard_signal_test, testing::ValuesIn(fatalSignals()),
                         [](const auto& signal) {
                             const char* name = sigabbrev_np(signal.param);
                             return name != nullptr ? name
                                                    : "Number" + std::to_string(signal.param);
                         });

// The cursor's sequence is written to a pipe that nobody reads; that is not what it dies of.
TEST(TerminalGuard, DiesOfTheSignalThatWasSentAlthoughItsOutputIsABrokenPipe) {
    terminal_session session(guarded([] {
        makeOutputABrokenPipe();
        raise(SIGTERM);
    }));
    const int status = session.awaitEnd();
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(SIGTERM, WTERMSIG(status));
}

// The process that writes to it is not to be ended by its stop.
TEST(TerminalGuard, StopsAlthoughItsOutputIsABrokenPipe) {
    terminal_session session(guarded([] {
        makeOutputABrokenPipe();
        raise(SIGTSTP);
    }));
    EXPECT_EQ("returned", session.result());
}

// The shell shares what standard output is open as, and may rely on it.
TEST(TerminalGuard, LetsOutputWaitUntilItEnds) {
    terminal_session session([] {
        fcntl(STDOUT_FILENO, F_SETFL, fcntl(STDOUT_FILENO, F_GETFL) | O_NONBLOCK);
        std::string waits;
        {
            const terminal_guard guard;
            waits = doesOutputWait() ? "waits, " : "does not wait, ";
        }
        return waits + (doesOutputWait() ? "waits" : "does not wait");
    });
    EXPECT_EQ("waits, does not wait", session.result());
}

TEST(TerminalGuard, LetsOutputBeAsItWasWhenTheProcessDies) {
    const pseudo_terminal terminal(24, 80);
    fcntl(terminal.slave(), F_SETFL, fcntl(terminal.slave(), F_GETFL) | O_NONBLOCK);
    terminal_session session([&terminal] {
        dup2(terminal.slave(), STDOUT_FILENO);
        const terminal_guard guard;
        if (doesOutputWait()) {
            raise(SIGTERM);
        }
        return std::string();
    });
    EXPECT_EQ(SIGTERM, WTERMSIG(session.awaitEnd()));
    EXPECT_NE(0, fcntl(terminal.slave(), F_GETFL) & O_NONBLOCK);
}

// A process that leads its session is not stopped, only asked to: what it does around the stop is
// all that happens.
TEST(TerminalGuard, LetsOutputWaitAgainAfterAStop) {
    terminal_session session([] {
        fcntl(STDOUT_FILENO, F_SETFL, fcntl(STDOUT_FILENO, F_GETFL) | O_NONBLOCK);
        const terminal_guard guard;
        raise(SIGTSTP);
        return std::string(doesOutputWait() ? "waits" : "does not wait");
    });
    EXPECT_EQ("waits", session.result());
}

// A pause for slow terminals, a part of the cursor's sequence, is not to be written as text.
TEST(TerminalGuard, GivesTheTerminalBackAtExit) {
    terminal_session session(guarded([] { std::exit(3); }));
    EXPECT_EQ(3, WEXITSTATUS(session.awaitEnd()));
    EXPECT_TRUE(session.terminal().isCooked());
    EXPECT_EQ("\x1b[?25l\x1b[?25h!", session.output());
}

// Whoever hid the cursor has shown it on the way, so nothing is written then.
TEST(TerminalGuard, GivesTheAttributesBackWhenItEnds) {
    terminal_session session(guarded([] {}));
    EXPECT_EQ("returned", session.result());
    EXPECT_TRUE(session.terminal().isCooked());
    EXPECT_EQ("\x1b[?25l", session.output());
}

TEST(TerminalGuard, CutsACursorSequenceThatIsLongerThanAnyOne) {
    const std::string longest = "\x1b[" + std::string(61, '1');
    terminal_session session([&] {
        const terminal_guard guard;
        terminal_guard::rememberCursor(longest + "h", "");
        std::exit(0);
        return std::string();
    });
    session.awaitEnd();
    EXPECT_EQ(longest, session.output());
}

// A process that leads its session is not stopped, only asked to.
TEST(TerminalGuard, WritesNothingAroundAStopBeforeTheCursorIsKnown) {
    terminal_session session([] {
        const terminal_guard guard;
        raise(SIGTSTP);
        return std::string("went on");
    });
    EXPECT_EQ("went on", session.result());
    EXPECT_EQ("", session.output());
}

// The calls that it makes on the way would otherwise be taken for the interrupted program's.
TEST(TerminalGuard, KeepsTheErrorOfAnInterruptedCallOverAStop) {
    terminal_session session([] {
        const terminal_guard guard;
        close(STDIN_FILENO);  // so that asking for its attributes fails
        errno = ERANGE;
        raise(SIGTSTP);
        return std::string(errno == ERANGE ? "kept" : "lost");
    });
    EXPECT_EQ("kept", session.result());
}

// Its shell has taken the terminal back: restoring it from there must not stop the process.
TEST(TerminalGuard, EndsInTheBackground) {
    terminal_session session([] {
        const int status = statusOfJob([](pid_t shell) {
            std::signal(SIGTTOU, SIG_DFL);
            const terminal_guard guard;
            std::signal(SIGTTOU, SIG_IGN);
            tcsetpgrp(STDIN_FILENO, shell);
            std::signal(SIGTTOU, SIG_DFL);
            std::exit(3);
        });
        return std::string(WIFEXITED(status) ? "ended" : "stopped");
    });
    EXPECT_EQ("ended", session.result());
}

// The cursor's sequence would be waited for for ever.
TEST(TerminalGuard, EndsThoughNobodyReadsWhatTheTerminalShows) {
    terminal_session session([] {
        const terminal_guard guard;
        terminal_guard::rememberCursor("\x1b[?25h", "");
        const pseudo_terminal unread(24, 80);
        dup2(unread.slave(), STDOUT_FILENO);
        const int flags = fcntl(STDOUT_FILENO, F_GETFL);
        fcntl(STDOUT_FILENO, F_SETFL, flags | O_NONBLOCK);
        while (write(STDOUT_FILENO, "x", 1) == 1) {
        }
        fcntl(STDOUT_FILENO, F_SETFL, flags);
        std::exit(3);
        return std::string();
    });
    EXPECT_EQ(3, WEXITSTATUS(session.awaitEnd()));
}

TEST(TerminalGuard, LeavesSignalsTheirDefaultAction) {
    terminal_session session([] {
        { const terminal_guard guard; }
        struct sigaction action {};
        sigaction(SIGTERM, nullptr, &action);
        return std::string(action.sa_handler == SIG_DFL ? "default" : "other");
    });
    EXPECT_EQ("default", session.result());
}
