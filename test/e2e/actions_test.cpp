#include <csignal>
#include <ostream>

#include "docs/package_documents.hpp"
#include "harness/tool_test.hpp"

namespace {

struct flash_case_t {
    menu_item_t item;
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
    choose(mainScreen().number(GetParam().item));
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
    awaitMenu(mainScreen().key(GetParam().item));
    EXPECT_FALSE(session->screen().contains("core program at work"));
}

INSTANTIATE_TEST_SUITE_P(
    Main, flash_entry_test,
    testing::Values(flash_case_t{main_menu::normalFlash,
                                 "Starting validation of inactive image, please wait...",
                                 "./varnflash ../fw.bin /i /logDebug"},
                    flash_case_t{main_menu::forcedFlash1st,
                                 "Preparing forced flash of 1st image, please wait...",
                                 "./varnflash ../fw.bin /f1 /logDebug"},
                    flash_case_t{main_menu::forcedFlash2nd,
                                 "Preparing forced flash of 2nd image, please wait...",
                                 "./varnflash ../fw.bin /f2 /logDebug"},
                    flash_case_t{main_menu::emergencyFlash,
                                 "Preparing emergency flash, please wait...",
                                 "./varnflash ../fw.bin /emerg /logDebug"},
                    flash_case_t{main_menu::reboot,
                                 "Varn reboot pending, wait for boot to complete",
                                 "./varnflash /wr"}),
    [](const auto& entry) { return "Item" + std::to_string(entry.param.item); });

TEST_F(document_entry_test, ShowsTheReadmeWithLessAndReturnsAtOnce) {
    startMenu();
    show(mainScreen().number(main_menu::readme));
    EXPECT_EQ((std::vector<std::string>{"./varnflash /ispfr", "which less", "clear",
                                        "less ../readme.txt"}),
              package.commandLines());
    const run_record_t reader = package.runs().back();
    EXPECT_EQ(3U, reader.descriptors.size());
    EXPECT_EQ(std::set<int>{}, reader.ignoredSignals);
    EXPECT_EQ(std::set<int>{}, reader.blockedSignals);
}

// Documents stand in their table as their entries do in the menus, but for the last: no entry
// offers the Debian copyrights.
TEST_F(document_entry_test, ShowsEveryDocumentAndReturnsToTheMainMenu) {
    std::vector<std::string> shown;
    const auto showAll = [&](const shown_menu& menu, menu_item_t first, menu_item_t last) {
        for (int number = menu.number(first); number <= menu.number(last); ++number) {
            show(number);
            shown.push_back(package.commandLines().back());
        }
    };
    startMenu();
    showAll(mainScreen(), main_menu::readme, main_menu::legalDocuments - 1);
    choose(mainScreen().number(main_menu::legalDocuments));
    session->awaitScreen("#LEGAL");
    awaitMenu();
    showAll(legalScreen(), legal_menu::eula, legal_menu::gapAfterDocuments - 1);
    std::vector<std::string> expected;
    for (const document_t& document : packageDocuments) {
        expected.push_back("less ../" + std::string(document.fileName));
    }
    EXPECT_EQ("less ../CopyrightsDebian", expected.back());
    expected.pop_back();
    EXPECT_EQ(expected, shown);

    choose(legalScreen().number(legal_menu::exit));
    session->awaitScreen("Reboot Varn");
    awaitMenu(mainScreen().key(main_menu::legalDocuments));  // still highlighted
    session->press("\r");
    session->awaitScreen("#LEGAL");
    awaitMenu();  // and the legal menu starts without a highlight
}
