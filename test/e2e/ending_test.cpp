#include <csignal>
#include <cstring>

#include "harness/tool_test.hpp"

namespace {

class ending_test : public tool_test {};

}  // namespace

TEST_F(ending_test, ExitGivesTheUsersAttributesBackExactly) {
    const termios before = pseudo_terminal(24, 80).attributes();
    startMenu();
    choose(mainScreen().number(main_menu::exit));
    EXPECT_EQ(0, awaitEnd());
    EXPECT_EQ("Exitting program 'varnmenu' due to user normal exit\n", session->screen().text());
    expectTerminalRestored();
    const termios after = session->terminal().attributes();
    EXPECT_EQ(before.c_lflag, after.c_lflag);
    EXPECT_EQ(before.c_iflag, after.c_iflag);
    EXPECT_EQ(before.c_oflag, after.c_oflag);
    EXPECT_EQ(before.c_cflag, after.c_cflag);
    EXPECT_EQ(0, memcmp(before.c_cc, after.c_cc, sizeof before.c_cc));
}

TEST_F(ending_test, CtrlCAtTheMenuIsAnOrderlyEnd) {
    startMenu();
    session->press("\x03");
    EXPECT_EQ(0, awaitEnd());
    EXPECT_EQ("Exitting program 'varnmenu' due to user interruption\n", session->screen().text());
    expectTerminalRestored();
}

TEST_F(ending_test, CtrlCAtAnEnterWaitIsNoEnd) {
    startMenu();
    session->press("0");
    awaitEnterPrompt();
    session->press("\x03");
    session->press("\r");
    awaitMenu();
}

// Without a working directory the program cannot name itself any more.
TEST_F(ending_test, AnAbortAtTheLastLineGivesTheTerminalBack) {
    startMenu();
    package.remove("tool");
    session->press("\x03");
    EXPECT_EQ(128 + SIGABRT, awaitEnd());
    expectTerminalRestored();
}

TEST_F(ending_test, ASignalWhileOutputIsStoppedGivesTheTerminalBack) {
    startMenu();
    session->type("\x13");  // Ctrl-S
    session->press("1");
    session->await([&] { return !session->isWaitingForKey(); }, "the drawing to be held up");
    session->signal(SIGTERM);
    EXPECT_EQ(128 + SIGTERM, awaitEnd());
    expectTerminalRestored();
}
