#include <filesystem>

#include "harness/tool_test.hpp"

namespace {

class start_test : public tool_test {
protected:
    /// The one line, then the prompt, and the end after ENTER.
    void expectInvalidArgument(const std::string& text) {
        start(24, 120);
        session->awaitScreen("Press ENTER to continue...");
        EXPECT_TRUE(session->terminal().isCooked());
        session->press("\n");
        EXPECT_EQ(0, awaitEnd());
        EXPECT_EQ("[CRIT] Invalid argument error: " + text + "\nPress ENTER to continue...\n",
                  session->screen().text());
        expectTerminalRestored();
    }

    /// The one line and the end, without a prompt.
    void expectEnd(const std::string& line) {
        start(24, 120);
        EXPECT_EQ(0, awaitEnd());
        EXPECT_EQ(line + "\n", session->screen().text());
        expectTerminalRestored();
    }
};

}  // namespace

TEST_F(start_test, NeedsTheImage) {
    package.remove("fw.bin");
    expectInvalidArgument("Firmware file not found: fw.bin");
}

TEST_F(start_test, NeedsATerminalWithTheSequences) {
    program.environment["TERM"] = "vt100";
    expectInvalidArgument("Cannot initialize terminal sequences");
}

TEST_F(start_test, NeedsACoreProgramThatRuns) {
    std::filesystem::permissions(package.tool() / "varnflash", std::filesystem::perms(0644));
    expectEnd("[CRIT] General exception: Command cannot be executed properly");
}

// Nothing can be built to wait with then: no prompt.
TEST_F(start_test, NeedsThePath) {
    program.environment.erase("PATH");
    expectEnd("[CRIT] Invalid argument error: Environment variables cannot be initialized");
}

// The terminal comes first, and without TERM it is one that lacks colours.
TEST_F(start_test, NeedsTheTerminalType) {
    program.environment.erase("TERM");
    expectEnd("[CRIT] Invalid argument error: Cannot initialize terminal sequences");
}

TEST_F(start_test, NeedsATerminalOnStandardInput) {
    program.arguments = {"sh", "-c", "echo | exec " + program.path};
    program.path = "/bin/sh";
    expectEnd(
        "[CRIT] Invalid argument error: Cannot initialize terminal\nPress ENTER to continue...");
}

// terminfo itself ends the process.
TEST_F(start_test, NeedsATerminalThatIsKnown) {
    program.environment["TERM"] = "no-such-terminal";
    start();
    EXPECT_EQ(1, awaitEnd());
    EXPECT_TRUE(session->screen().contains("unknown terminal type")) << session->screen().text();
    expectTerminalRestored();
}

TEST_F(start_test, RefusesUsersOtherThanRoot) {
    runAsNobody();
    expectEnd(
        "Exitting program 'varnmenu' due to program started without administrator privileges");
    EXPECT_EQ(std::string::npos, session->output().find("Normal Flash"));
}

TEST_F(start_test, IgnoresOtherCommandLines) {
    program.arguments = {"./varnmenu", "--eval", "--eval"};
    startMenu();
    EXPECT_FALSE(session->screen().contains("Starting validation"));
}

TEST_F(start_test, TakesTheScreenBackFromTheQuestion) {
    startMenu();
    const std::string menu = session->screen().picture();
    package.let("varnflash", R"(print \033[41m\033[?25h)");
    startMenu();
    EXPECT_EQ(menu, session->screen().picture());
    EXPECT_FALSE(session->screen().isCursorVisible());
}
