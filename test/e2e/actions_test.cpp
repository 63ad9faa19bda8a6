#include <csignal>
#include <ostream>

#include "harness/tool_test.hpp"

namespace {

struct flash_case_t {
    int number;
    const char* message;
    const char* commandLine;
};

void PrintTo(const flash_case_t& entry, std::ostream* out) { *out << entry.commandLine; }

class flash_entry_test : public tool_test, public testing::WithParamInterface<flash_case_t> {};

class actions_test : public tool_test {
protected:
    /// Chooses a document and returns when its reader has ended and the menu is back.
    void show(int number) {
        const std::size_t before = package.runs().size();
        choose(number);
        session->await([&] { return package.runs().size() > before; }, "a program to run");
        session->awaitKeyWait();
    }
};

}  // namespace

TEST_P(flash_entry_test, RunsTheCoreProgramOnTheTerminal) {
    package.let("varnflash", "print core program at work");
    startMenu();
    choose(GetParam().number);
    session->awaitScreen(GetParam().message);
    session->awaitScreen("core program at work");
    session->awaitKeyWait();

    const run_record_t run = package.runs().back();
    EXPECT_EQ(GetParam().commandLine, package.commandLines().back());
    const std::vector<std::string> environment{"PATH=" + package.programs().string(), "TERM=xterm",
                                               "PWD=" + package.tool().string(),
                                               "LANG=en_US.UTF-8"};
    EXPECT_EQ(environment, run.environment);
    EXPECT_EQ(3U, run.descriptors.size());
    EXPECT_EQ(run.descriptors.at(0), run.descriptors.at(1));
    EXPECT_TRUE(run.descriptors.at(1).starts_with("rw /dev/pts/"));
    EXPECT_EQ((std::set<int>{SIGHUP, SIGINT, SIGQUIT}), run.ignoredSignals);

    session->press("\r");
    awaitMenu(std::to_string(GetParam().number));
    EXPECT_FALSE(session->screen().contains("core program at work"));
}

INSTANTIATE_TEST_SUITE_P(
    Main, flash_entry_test,
    testing::Values(flash_case_t{1, "Starting validation of inactive image, please wait...",
                                 "./varnflash ../fw.bin /i /logDebug"},
                    flash_case_t{2, "Preparing forced flash of 1st image, please wait...",
                                 "./varnflash ../fw.bin /f1 /logDebug"},
                    flash_case_t{3, "Preparing forced flash of 2nd image, please wait...",
                                 "./varnflash ../fw.bin /f2 /logDebug"},
                    flash_case_t{4, "Preparing emergency flash, please wait...",
                                 "./varnflash ../fw.bin /emerg /logDebug"},
                    flash_case_t{7, "Varn reboot pending, wait for boot to complete",
                                 "./varnflash /wr"}),
    [](const auto& entry) { return "Number" + std::to_string(entry.param.number); });

TEST_F(actions_test, ShowsTheMessageTwoLinesBelowTheMenu) {
    package.let("varnflash", "print done");
    startMenu();
    choose(1);
    session->awaitScreen("done");
    session->awaitKeyWait();
    EXPECT_EQ("(c) 2026 Varn Firmware Tools", session->screen().row(13));
    EXPECT_EQ("", session->screen().row(15));
    EXPECT_EQ("Starting validation of inactive image, please wait...", session->screen().row(16));
    EXPECT_EQ("done", session->screen().row(19));
}

TEST_F(actions_test, LetsTheCoreProgramReadTheKeyboard) {
    startMenu();
    package.let("varnflash", "print really?\nline\nprint answered");
    choose(2);
    session->awaitScreen("really?");
    session->awaitScreen("answered");  // the raw mode answers at once
    session->awaitKeyWait();
    session->press("\r");
    awaitMenu("2");
}

TEST_F(actions_test, ReturnsToTheMenuWhateverTheExitStatus) {
    startMenu();
    package.let("varnflash", "print failed\nexit 1");
    choose(1);
    session->awaitScreen("failed");
    session->press("\r");
    awaitMenu("1");
    EXPECT_EQ(std::string::npos, session->output().find("[WARN]"));
}

TEST_F(actions_test, ShowsTheReadmeWithLessAndReturnsAtOnce) {
    startMenu();
    show(5);
    awaitMenu("5");
    const auto lines = package.commandLines();
    EXPECT_EQ((std::vector<std::string>{"./varnflash /ispfr", "which less", "clear",
                                        "less ../readme.txt"}),
              lines);
    const run_record_t reader = package.runs().back();
    EXPECT_EQ(4U, reader.environment.size());
    EXPECT_EQ(3U, reader.descriptors.size());
    EXPECT_EQ(std::set<int>{}, reader.ignoredSignals);
    EXPECT_EQ(std::set<int>{}, reader.blockedSignals);
}

TEST_F(actions_test, AsksForEnterAfterMoreAndCat) {
    package.remove("programs/less");
    for (const char* reader : {"more", "cat"}) {
        package.let(reader, "show");
        startMenu();
        choose(5);
        session->awaitScreen("text of readme.txt");
        session->awaitScreen("Press ENTER to close the file...");
        session->press("x");
        session->press("\r");
        awaitMenu("5");
        EXPECT_EQ(std::string(reader) + " ../readme.txt", package.commandLines().back());
        package.remove("programs/more");
    }
}

TEST_F(actions_test, ShowsEveryLegalDocumentAndReturnsToTheMainMenu) {
    startMenu();
    choose(6);
    session->awaitScreen("#LEGAL");
    awaitMenu();
    const std::vector<std::string> documents{
        "../eula_en.txt", "../ThirdPartyLicenseReadmeFlashtools.txt",
        "../ThirdPartyLicenseReadme_MORV_API.txt", "../ThirdPartyLicenseReadmeFirmware.txt",
        "../CopyrightsCentOS"};
    for (int number = 1; number <= 5; ++number) {
        show(number);
        awaitMenu(std::to_string(number));
        EXPECT_EQ("less " + documents.at(static_cast<std::size_t>(number - 1)),
                  package.commandLines().back());
    }
    choose(6);
    session->awaitScreen("Reboot Varn");
    awaitMenu("6");  // "Legal Documents" is still highlighted
    session->press("\r");
    session->awaitScreen("#LEGAL");
    awaitMenu();  // and the legal menu starts anew
}

TEST_F(actions_test, ExitsWithTheFileNameOfTheProgram) {
    startMenu();
    choose(8);
    EXPECT_EQ(0, awaitEnd());
    EXPECT_EQ("Exitting program 'varnmenu' due to user normal exit\n", session->screen().text());
    expectTerminalRestored();
}

TEST_F(actions_test, FindsAPagerThroughAWhichThatMustWrite) {
    package.let("which", "look strictly");
    startMenu();
    show(5);
    awaitMenu("5");
    EXPECT_EQ("less ../readme.txt", package.commandLines().back());
}
