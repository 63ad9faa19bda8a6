#include <csignal>

#include "harness/process_state.hpp"
#include "harness/tool_test.hpp"

namespace {

/// The program as a shell's job that is stopped and taken up again.
class stop_test : public tool_test, public testing::WithParamInterface<int> {
protected:
    void startMenuFromShell() {
        startFromShell();
        awaitMenu();
    }

    void stop() {
        session->signal(GetParam());
        session->awaitScreen("Stopped");
    }

    void takeUp() {
        const std::size_t before = session->output().size();
        session->type("fg\n");
        const std::string clear = "\x1b[H\x1b[2J";
        session->await([&] { return session->output().find(clear, before) != std::string::npos; },
                       "the screen to be drawn anew");
    }
};

class continued_test : public tool_test {};
/// Started by a shell whose prompt has a different mode.
class prompt_test : public tool_test {
protected:
    void startShell() {
        command = program.path;
        program.path = "/bin/bash";
        program.arguments = {"bash", "--norc", "--noprofile", "-i"};
        program.environment["PS1"] = "shell: ";
        start();
        awaitPrompt();
    }

    void awaitPrompt() {
        session->await([this] { return !session->terminal().isCooked(); }, "the prompt's mode");
    }

    std::string command;
};

}  // namespace

TEST_P(stop_test, AtTheMenuLeavesTheTerminalToTheShell) {
    startMenuFromShell();
    moveTo("2");
    stop();
    if (GetParam() == SIGTSTP) {  // SIGSTOP leaves no chance to show the cursor
        EXPECT_TRUE(session->screen().isCursorVisible());
    }
    session->type("echo it $((6 * 7)) works\n");
    session->awaitScreen("it 42 works");
    EXPECT_TRUE(session->terminal().isCooked());

    takeUp();
    awaitMenu("2");
    EXPECT_EQ(mainScreen().rows("2"), session->screen().rows());
    EXPECT_FALSE(session->screen().isCursorVisible());
    EXPECT_FALSE(session->terminal().isCooked());
    session->press("\x1b[B");
    awaitMenu("3");
}

TEST_P(stop_test, AtAWarningShowsTheWarningAgain) {
    startMenuFromShell();
    session->press("0");
    awaitEnterPrompt();
    stop();
    takeUp();
    session->awaitScreen("Press ENTER");
    std::vector<std::string> expected = mainScreen().rows();
    for (const char* row : {"", "", "[WARN] Wrong selection, please provide valid number : 0",
                            "Press ENTER to continue..."}) {
        expected.emplace_back(row);
    }
    EXPECT_EQ(expected, session->screen().rows());
    session->press("\r");
    awaitMenu();
}

TEST_P(stop_test, DuringAFlashEndsInTheToolsOwnMode) {
    startMenuFromShell();
    package.let("varnflash", "kill 19\nprint core program ended");
    choose(1);
    session->await([&] { return package.runs().size() == 2; }, "the core program");
    // One that stops after the shell's continuation would stay so.
    const pid_t coreProgram = package.runs().back().process;
    session->await([&] { return isStopped(coreProgram); }, "the core program's stop");
    session->signal(GetParam());
    session->awaitScreen("Stopped");
    session->type("fg\n");  // continues the whole group
    session->awaitScreen("core program ended");
    session->press("\r");
    awaitMenu("1");
    EXPECT_FALSE(session->terminal().isCooked());
}

TEST_P(stop_test, AndEndedWhileStoppedLeavesTheTerminalToTheShell) {
    startMenuFromShell();
    stop();
    session->type("kill %1; fg\n");
    session->awaitScreen("Terminated");
    session->type("echo it $((6 * 7)) works\n");
    session->awaitScreen("it 42 works");
    EXPECT_TRUE(session->terminal().isCooked());
    EXPECT_TRUE(session->screen().isCursorVisible());
}

INSTANTIATE_TEST_SUITE_P(Stopped, stop_test, testing::Values(SIGTSTP, SIGSTOP),
                         [](const auto& signal) { return sigabbrev_np(signal.param); });

// What is typed while the program is stopped, or before it has drawn the menu again, does not
// answer what the user sees.
TEST_F(continued_test, TakesNoEnterFromBeforeTheDrawing) {
    startMenu();
    moveTo("1");
    session->signal(SIGSTOP);
    session->await([this] { return isStopped(session->process()); }, "the stop");
    session->type("\r\n");
    session->signal(SIGCONT);
    awaitMenu("1");
    EXPECT_EQ(1U, package.runs().size());  // the question at the start
}

// The prompt's mode is not what the user has when a program runs.
TEST_F(prompt_test, IsNotKeptByAProgramThatWasStartedInTheBackground) {
    startShell();
    session->type(command + " &\n");
    session->followChild();
    session->await([this] { return isStopped(session->process()); }, "the stop");
    session->type("fg\n");
    awaitMenu();
    session->press("x");
    session->awaitScreen("Press ENTER");
    session->press("\r");
    awaitMenu();
}

TEST_F(prompt_test, IsLeftAloneByAProgramThatEndsWhileItIsStopped) {
    startShell();
    session->type(command + "\n");
    session->followChild();
    awaitMenu();
    session->signal(SIGTSTP);
    session->await([this] { return isStopped(session->process()); }, "the stop");
    awaitPrompt();
    const tcflag_t before = session->terminal().attributes().c_lflag;
    session->signal(SIGTERM);
    session->signal(SIGCONT);
    session->await([this] { return !isAlive(session->process()); }, "the end of the program");
    EXPECT_EQ(before, session->terminal().attributes().c_lflag);
}
