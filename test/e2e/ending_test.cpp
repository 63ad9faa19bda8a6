#include <fcntl.h>
#include <sys/stat.h>

#include <csignal>
#include <cstring>
#include <fstream>

#include "harness/tool_test.hpp"

namespace {

class ending_test : public tool_test {};

class fatal_signal_test : public tool_test, public testing::WithParamInterface<int> {};

/// A core program that is writing until the test lets it end.
class flash_in_progress_test : public tool_test {
protected:
    void startFlash() {
        startMenu();
        mkfifo((package.root() / "go").c_str(), 0600);
        package.let("varnflash", "print writing\nawait go\nprint written");
        choose(2);
        session->awaitScreen("writing");
    }

    void endFlash() { std::ofstream(package.root() / "go") << "\n"; }

    bool coreProgramHasEnded() const { return package.runs().back().ended; }
};

std::string signalName(const testing::TestParamInfo<int>& signal) {
    return sigabbrev_np(signal.param);
}

class held_signal_test : public flash_in_progress_test, public testing::WithParamInterface<int> {};

}  // namespace

TEST_P(fatal_signal_test, AtTheMenuGivesTheTerminalBack) {
    startMenu();
    session->signal(GetParam());
    EXPECT_EQ(128 + GetParam(), awaitEnd());
    expectTerminalRestored();
}

TEST_P(fatal_signal_test, AtAWarningGivesTheTerminalBack) {
    startMenu();
    session->press("x");
    session->awaitScreen("Press ENTER");
    session->awaitKeyWait();
    session->signal(GetParam());
    EXPECT_EQ(128 + GetParam(), awaitEnd());
    expectTerminalRestored();
}

INSTANTIATE_TEST_SUITE_P(Fatal, fatal_signal_test,
                         testing::Values(SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGABRT), signalName);

TEST_F(ending_test, CtrlCAtTheMenuIsAnOrderlyEnd) {
    startMenu();
    session->press("\x03");
    EXPECT_EQ(0, awaitEnd());
    EXPECT_EQ("Exitting program 'varnmenu' due to user interruption\n", session->screen().text());
    expectTerminalRestored();
}

// Without a working directory the program cannot name itself any more.
TEST_F(ending_test, AnAbortAtTheLastLineGivesTheTerminalBack) {
    startMenu();
    package.remove("tool");
    session->press("\x03");
    EXPECT_EQ(128 + SIGABRT, awaitEnd());
    expectTerminalRestored();
}

TEST_P(fatal_signal_test, WhileOutputIsStoppedGivesTheTerminalBack) {
    startMenu();
    session->type("\x13");  // Ctrl-S
    session->press("1");
    session->await([&] { return !session->isWaitingForKey(); }, "the drawing to be held up");
    session->signal(GetParam());
    EXPECT_EQ(128 + GetParam(), awaitEnd());
    expectTerminalRestored();
}

TEST_F(ending_test, CtrlCAtAnEnterWaitIsNoEnd) {
    startMenu();
    session->press("0");
    session->awaitScreen("Press ENTER");
    session->press("\x03");
    session->press("\r");
    awaitMenu();
}

TEST_F(ending_test, AHangUpAtTheMenuEndsTheProgram) {
    startMenu();
    session->hangUp();
    EXPECT_EQ(128 + SIGHUP, awaitEnd());
}

TEST_F(ending_test, TheUsersAttributesComeBackExactly) {
    const termios before = pseudo_terminal(24, 80).attributes();
    startMenu();
    choose(8);
    EXPECT_EQ(0, awaitEnd());
    const termios after = session->terminal().attributes();
    EXPECT_EQ(before.c_lflag, after.c_lflag);
    EXPECT_EQ(before.c_iflag, after.c_iflag);
    EXPECT_EQ(before.c_oflag, after.c_oflag);
    EXPECT_EQ(before.c_cflag, after.c_cflag);
    EXPECT_EQ(0, memcmp(before.c_cc, after.c_cc, sizeof before.c_cc));
}

// The session drops while the controller is being written: the writing goes on to its end, and
// only then does the tool die of the hang-up.
TEST_F(flash_in_progress_test, SurvivesADroppedConnection) {
    startFlash();
    session->hangUp();
    EXPECT_FALSE(coreProgramHasEnded());
    EXPECT_EQ(0, kill(session->process(), 0));
    endFlash();
    EXPECT_EQ(128 + SIGHUP, awaitEnd());
    EXPECT_TRUE(coreProgramHasEnded());
}

TEST_P(held_signal_test, TakesEffectWhenTheCoreProgramHasEnded) {
    startFlash();
    session->signal(GetParam());
    EXPECT_FALSE(coreProgramHasEnded());
    EXPECT_FALSE(session->terminal().isCooked());
    endFlash();
    EXPECT_EQ(128 + GetParam(), awaitEnd());
    EXPECT_TRUE(coreProgramHasEnded());
    EXPECT_TRUE(session->screen().contains("written"));
    expectTerminalRestored();
}

INSTANTIATE_TEST_SUITE_P(Held, held_signal_test, testing::Values(SIGHUP, SIGINT, SIGQUIT),
                         signalName);

// A signal to the whole group, as from a terminal, reaches the core program as well.
TEST_F(flash_in_progress_test, KeepsTheCoreProgramFromAnInterruptToTheGroup) {
    startFlash();
    kill(-session->process(), SIGINT);
    endFlash();
    EXPECT_EQ(128 + SIGINT, awaitEnd());
    EXPECT_TRUE(coreProgramHasEnded());
}

TEST_F(flash_in_progress_test, ReturnsToTheMenuWithoutASignal) {
    startFlash();
    endFlash();
    session->awaitScreen("written");
    session->press("\r");
    awaitMenu("2");
}
