#include "term/terminal_guard.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "harness/terminal_session.hpp"
#include "harness/test_surroundings.hpp"

namespace {

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

TEST_P(terminal_guard_signal_test, GivesTheTerminalBackAndDiesOfTheSignal) {
    terminal_session session(guarded([] {
        for (;;) {
            pause();
        }
    }));
    session.await([&] { return !session.terminal().isCooked(); }, "the raw mode");
    session.await([&] { return !session.screen().isCursorVisible(); }, "the hidden cursor");
    session.signal(GetParam());
    const int status = session.awaitEnd();
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(GetParam(), WTERMSIG(status));
    EXPECT_TRUE(session.terminal().isCooked());
    EXPECT_TRUE(session.screen().isCursorVisible());
}

INSTANTIATE_TEST_SUITE_P(Fatal, terminal_guard_signal_test,
                         testing::Values(SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGABRT, SIGSEGV,
                                         SIGPIPE, SIGUSR1, SIGPROF),
                         [](const auto& signal) { return sigabbrev_np(signal.param); });

TEST(TerminalGuard, GivesTheTerminalBackAtExit) {
    terminal_session session(guarded([] { std::exit(3); }));
    EXPECT_EQ(3, WEXITSTATUS(session.awaitEnd()));
    EXPECT_TRUE(session.terminal().isCooked());
    EXPECT_TRUE(session.screen().isCursorVisible());
}

TEST(TerminalGuard, GivesTheTerminalBackAtAbort) {
    terminal_session session(guarded([] { std::abort(); }));
    EXPECT_EQ(SIGABRT, WTERMSIG(session.awaitEnd()));
    EXPECT_TRUE(session.terminal().isCooked());
    EXPECT_TRUE(session.screen().isCursorVisible());
}

// Whoever hid the cursor has shown it on the way, so nothing is written then.
TEST(TerminalGuard, GivesTheAttributesBackWhenItEnds) {
    terminal_session session(guarded([] {}));
    EXPECT_EQ("returned", session.result());
    EXPECT_TRUE(session.terminal().isCooked());
    EXPECT_EQ("\x1b[?25l", session.output());
}

// A pause for slow terminals is not to be written as text.
TEST(TerminalGuard, WritesTheCursorSequenceWithoutItsPadding) {
    terminal_session session(guarded([] { std::exit(0); }));
    session.awaitEnd();
    EXPECT_EQ("\x1b[?25l\x1b[?25h!", session.output());
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

TEST(TerminalGuard, LeavesSignalsTheirDefaultActionBehind) {
    terminal_session session([] {
        { const terminal_guard guard; }
        struct sigaction action {};
        sigaction(SIGTERM, nullptr, &action);
        return std::string(action.sa_handler == SIG_DFL ? "default" : "other");
    });
    EXPECT_EQ("default", session.result());
}

TEST(TerminalGuard, StopsWithoutATerminal) {
    terminal_session session([] {
        const typed_input pipe("");
        const terminal_guard guard;
        raise(SIGTSTP);
        return std::string("went on");
    });
    EXPECT_EQ("went on", session.result());
}

TEST(TerminalGuard, DoesNothingWithoutATerminal) {
    const typed_input pipe("");
    const captured_output output;
    EXPECT_EXIT(
        {
            const terminal_guard guard;
            raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
}
