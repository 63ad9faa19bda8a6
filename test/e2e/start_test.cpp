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

constexpr const char* environmentLine =
    "[CRIT] Invalid argument error: Environment variables cannot be initialized";

}  // namespace

TEST_F(start_test, NeedsTheReleaseInformation) {
    package.remove("releasefile-information.txt");
    expectInvalidArgument("Info file is missing");
}

TEST_F(start_test, NeedsProperReleaseInformation) {
    package.write("releasefile-information.txt", "VARN_RELEASE=1\n");
    expectInvalidArgument("Info file has not all needed data or provided is not proper");
}

TEST_F(start_test, NeedsTheImage) {
    package.remove("fw.bin");
    expectInvalidArgument("Firmware file not found: fw.bin");
}

TEST_F(start_test, NeedsTheCoreProgram) {
    package.remove("tool/varnflash");
    expectInvalidArgument("Flashtools core program not available");
}

TEST_F(start_test, NeedsACoreProgramThatRuns) {
    std::filesystem::permissions(package.tool() / "varnflash", std::filesystem::perms(0644));
    expectEnd("[CRIT] General exception: Command cannot be executed properly");
}

// Nothing can be built to wait with then: no prompt.
TEST_F(start_test, NeedsThePath) {
    program.environment.erase("PATH");
    expectEnd(environmentLine);
}

// The terminal comes first, and without TERM it is one that lacks colours.
TEST_F(start_test, NeedsTheTerminalType) {
    program.environment.erase("TERM");
    expectEnd("[CRIT] Invalid argument error: Cannot initialize terminal sequences");
}

TEST_F(start_test, NeedsATerminalWithTheSequences) {
    program.environment["TERM"] = "vt100";
    expectInvalidArgument("Cannot initialize terminal sequences");
}

TEST_F(start_test, NeedsTheWorkingDirectory) {
    std::filesystem::create_directory(package.tool() / "gone");
    program.arguments = {"sh", "-c", "cd gone && /bin/rmdir ../gone && exec " + program.path};
    program.path = "/bin/sh";
    expectEnd(environmentLine);
}

TEST_F(start_test, LeavesAnUnknownTerminalToTerminfo) {
    program.environment["TERM"] = "no-such-terminal";
    start();
    EXPECT_EQ(1, awaitEnd());
    EXPECT_TRUE(session->screen().contains("unknown terminal type")) << session->screen().text();
    expectTerminalRestored();
}

TEST_F(start_test, NeedsATerminalOnStandardInput) {
    program.arguments = {"sh", "-c", "echo | exec " + program.path};
    program.path = "/bin/sh";
    expectEnd(
        "[CRIT] Invalid argument error: Cannot initialize terminal\nPress ENTER to continue...");
}

TEST_F(start_test, RefusesUsersOtherThanRoot) {
    runAsNobody();
    expectEnd(
        "Exitting program 'varnmenu' due to program started without administrator privileges");
    EXPECT_EQ(std::string::npos, session->output().find("Normal Flash"));
}

TEST_F(start_test, IgnoresOtherCommandLines) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"-eval"}, {"--EVAL"}, {"--eval", "--eval"}, {"--help"}}) {
        program.arguments = {"./varnmenu"};
        program.arguments.insert(program.arguments.end(), words.begin(), words.end());
        startMenu();
        EXPECT_FALSE(session->screen().contains("Starting validation"));
    }
}

TEST_F(start_test, NamesTheProgramByItsLastComponent) {
    program.arguments = {"tool-of-another-name"};
    startMenu();
    session->press("\x03");
    EXPECT_EQ(0, awaitEnd());
    EXPECT_EQ("Exitting program 'tool-of-another-name' due to user interruption\n",
              session->screen().text());
}

// The question is asked before anything else is run, with the usual surroundings of a child.
TEST_F(start_test, AsksTheCoreProgramFirst) {
    startMenu();
    const run_record_t run = package.runs().at(0);
    EXPECT_EQ((std::vector<std::string>{"./varnflash", "/ispfr"}), run.arguments);
    EXPECT_EQ(3U, run.descriptors.size());
    EXPECT_EQ(std::set<int>{}, run.ignoredSignals);
    EXPECT_EQ(std::set<int>{}, run.blockedSignals);
}

TEST_F(start_test, TakesTheScreenBackFromTheQuestion) {
    startMenu();
    const std::string menu = session->screen().picture();
    package.let("varnflash", R"(print \033[41m\033[?25h)");
    startMenu();
    EXPECT_EQ(menu, session->screen().picture());
    EXPECT_FALSE(session->screen().isCursorVisible());
}

TEST_F(start_test, ShowsReleaseValuesAsTheyAre) {
    package.write("releasefile-information.txt",
                  "VARN_RELEASE=\"9.99 rc\"\r\nSDR_RELEASE=%d\r\nSYSTEM=X  Y\r\nIMAGE_NAME=fw.bin");
    startMenu();
    EXPECT_EQ("       This tool will update Varn FW --> Rel. 9.99 rc", session->screen().row(0));
    EXPECT_EQ("Varn-FW: 9.99 rc  SDRR: %d  for X  Y", session->screen().row(12));
}
