#include "support/terminal_keeper.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "harness/job.hpp"
#include "harness/terminal_session.hpp"
#include "harness/test_surroundings.hpp"

namespace {

/// A child in its own process group, which has the terminal from now on.
pid_t giveTerminalToChild() {
    const pid_t child = fork();
    if (child == 0) {
        for (;;) {
            pause();
        }
    }
    std::signal(SIGTTOU, SIG_IGN);
    setpgid(child, child);
    tcsetpgrp(STDIN_FILENO, child);
    std::signal(SIGTTOU, SIG_DFL);
    return child;
}

}  // namespace

TEST(TerminalKeeper, PutsTheAttributesBack) {
    terminal_session session([] {
        setRawMode();
        termios before{};
        tcgetattr(STDIN_FILENO, &before);
        {
            const terminal_keeper keeper;
            termios other = before;
            other.c_lflag |= ECHO;
            other.c_iflag = 0;
            tcsetattr(STDIN_FILENO, TCSANOW, &other);
        }
        termios after{};
        tcgetattr(STDIN_FILENO, &after);
        return std::to_string(after.c_lflag == before.c_lflag) +
               std::to_string(after.c_iflag == before.c_iflag);
    });
    EXPECT_EQ("11", session.result());
}

// A write that finds the terminal busy would fail.
TEST(TerminalKeeper, MakesTheOutputWaitAgain) {
    terminal_session session([] {
        const int flags = fcntl(STDOUT_FILENO, F_GETFL);
        {
            const terminal_keeper keeper;
            fcntl(STDOUT_FILENO, F_SETFL, flags | O_NONBLOCK);
        }
        return std::string(fcntl(STDOUT_FILENO, F_GETFL) == flags ? "waits" : "does not wait");
    });
    EXPECT_EQ("waits", session.result());
}

TEST(TerminalKeeper, TakesTheTerminalBackFromAnotherGroup) {
    terminal_session session([] {
        pid_t child = 0;
        {
            const terminal_keeper keeper;
            child = giveTerminalToChild();
        }
        const bool isOurs = tcgetpgrp(STDIN_FILENO) == getpgrp();
        kill(child, SIGKILL);
        return std::string(isOurs ? "ours" : "not ours");
    });
    EXPECT_EQ("ours", session.result());
}

// The terminal is somebody else's then, who may pass it on.
TEST(TerminalKeeper, TakesNothingFromTheBackground) {
    terminal_session session([] {
        const pid_t first = giveTerminalToChild();
        pid_t second = 0;
        {
            const terminal_keeper keeper;
            second = giveTerminalToChild();
        }
        const bool isTheirs = tcgetpgrp(STDIN_FILENO) == second;
        kill(first, SIGKILL);
        kill(second, SIGKILL);
        return std::string(isTheirs ? "theirs" : "taken");
    });
    EXPECT_EQ("theirs", session.result());
}

// Its user has put this program aside.
TEST(TerminalKeeper, LeavesTheTerminalToTheShellOfTheSession) {
    terminal_session session([] {
        const int status = statusOfJob([](pid_t shell) {
            {
                const terminal_keeper keeper;
                tcsetpgrp(STDIN_FILENO, shell);
            }
            std::exit(tcgetpgrp(STDIN_FILENO) == shell ? 0 : 1);
        });
        return std::string(status == 0 ? "left" : "taken");
    });
    EXPECT_EQ("left", session.result());
}
