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

class document_entry_test : public tool_test {
protected:
    /// Chooses a document and returns when its reader has ended and the menu is back.
    void show(int number) {
        const std::size_t before = package.runs().size();
        choose(number);
        session->await([&] { return package.runs().size() > before; }, "a program to run");
        awaitMenu(std::to_string(number));
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
    EXPECT_EQ(4U, run.descriptors.size());
    EXPECT_EQ(run.descriptors.at(0), run.descriptors.at(1));
    EXPECT_TRUE(run.descriptors.at(1).starts_with("rw /dev/pts/"));
    EXPECT_EQ("rw /run/varnmenu.lock", run.descriptors.rbegin()->second);
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

TEST_F(document_entry_test, ShowsTheReadmeWithLessAndReturnsAtOnce) {
    startMenu();
    show(5);
    EXPECT_EQ((std::vector<std::string>{"./varnflash /ispfr", "which less", "clear",
                                        "less ../readme.txt"}),
              package.commandLines());
    const run_record_t reader = package.runs().back();
    EXPECT_EQ(3U, reader.descriptors.size());
    EXPECT_EQ(std::set<int>{}, reader.ignoredSignals);
    EXPECT_EQ(std::set<int>{}, reader.blockedSignals);
}

TEST_F(document_entry_test, ShowsEveryLegalDocumentAndReturnsToTheMainMenu) {
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
