#include <algorithm>
#include <chrono>

#include "harness/tool_test.hpp"

namespace {

using rows_t = std::vector<std::string>;

const rows_t mainMenu{"       This tool will update Varn FW --> Rel. 2.41",
                      "[1] Normal Flash of inactive Image with version validation",
                      "[2] Forced Normal Flash of 1st Image",
                      "[3] Forced Normal Flash of 2nd Image",
                      "[4] Emergency Flash of both Images",
                      "",
                      "[5] Readme",
                      "[6] Legal Documents",
                      "",
                      "[7] Reboot Varn",
                      "[8] Exit",
                      ">",
                      "Varn-FW: 2.41  SDRR: 3.07  for RX 2540",
                      "(c) 2026 Varn Firmware Tools"};

const rows_t legalMenu{"       This tool will update Varn FW --> Rel. 2.41",
                       "#LEGAL DOCUMENTS",
                       "[1] EULA",
                       "[2] TPL Flashtools",
                       "[3] TPL MORV Library",
                       "[4] TPL Firmware",
                       "[5] Centos Copyrights",
                       "",
                       "[6] Exit",
                       ">",
                       "Varn-FW: 2.41  SDRR: 3.07  for RX 2540",
                       "(c) 2026 Varn Firmware Tools"};

rows_t withPrompt(rows_t rows, const std::string& prompt) {
    rows[rows.size() - 3] = prompt;
    return rows;
}

constexpr const char* clearSequence = "\x1b[H\x1b[2J";

class menu_screen_test : public tool_test {
protected:
    /// @return first and last column of the cells in reverse video, and their row
    std::string reversed() const {
        std::string all;
        for (int row = 0; row < 24; ++row) {
            for (int column = 0; column < 80; ++column) {
                const bool now = session->screen().cell(row, column).reverse;
                const bool before = column > 0 && session->screen().cell(row, column - 1).reverse;
                if (now != before) {
                    all += (all.empty() ? "" : " ") + std::to_string(row) + "," +
                           std::to_string(now ? column : column - 1);
                }
            }
        }
        return all;
    }

    /// Everything in the row has these colours and weight, from the first column to the last.
    void expectStyle(int row, int last, int foreground, int background, bool bold) const {
        for (int column = 0; column <= last; ++column) {
            const screen_cell_t cell = session->screen().cell(row, column);
            EXPECT_EQ(foreground, cell.foreground) << row << "," << column;
            EXPECT_EQ(background, cell.background) << row << "," << column;
            EXPECT_EQ(bold, cell.bold) << row << "," << column;
        }
        const screen_cell_t next = session->screen().cell(row, last + 1);
        EXPECT_EQ(-1, next.background);
    }
};

}  // namespace

TEST_F(menu_screen_test, ShowsTheMainMenu) {
    startMenu();
    EXPECT_EQ(mainMenu, session->screen().rows());
    EXPECT_FALSE(session->screen().isCursorVisible());
    EXPECT_FALSE(session->terminal().isCooked());
    EXPECT_EQ("", reversed());
}

TEST_F(menu_screen_test, ShowsTheMainMenusColours) {
    startMenu();
    expectStyle(0, 56, 7, 4, true);  // 43 characters between seven blanks on each side
    expectStyle(1, 57, -1, -1, false);
    expectStyle(11, 1, -1, -1, true);
    expectStyle(12, 37, 1, -1, false);
    expectStyle(13, 27, 4, -1, false);
}

TEST_F(menu_screen_test, ShowsTheLegalMenu) {
    startMenu();
    choose(6);
    session->awaitScreen("#LEGAL");
    awaitMenu();
    EXPECT_EQ(legalMenu, session->screen().rows());
    expectStyle(0, 56, 7, 4, true);
    expectStyle(1, 15, 7, 4, true);
    expectStyle(2, 7, -1, -1, false);
    expectStyle(9, 1, -1, -1, true);
    expectStyle(10, 37, 1, -1, false);
    expectStyle(11, 27, 4, -1, false);
    EXPECT_FALSE(session->screen().isCursorVisible());
}

TEST_F(menu_screen_test, ShowsNoEmergencyFlashWhenTheCoreProgramSaysSo) {
    package.let("varnflash", "exit 55");
    startMenu();
    rows_t expected = mainMenu;
    expected.erase(expected.begin() + 4);
    for (const auto& [row, number] : {std::pair{5, 4}, {6, 5}, {8, 6}, {9, 7}}) {
        expected[static_cast<std::size_t>(row)].replace(1, 1, std::to_string(number));
    }
    EXPECT_EQ(expected, session->screen().rows());

    session->press("4");
    awaitMenu("4");
    EXPECT_EQ("5,4 5,9", reversed());  // "Readme"
    choose(4);
    session->awaitScreen("Varn-FW");
    session->awaitKeyWait();
    EXPECT_EQ("less ../readme.txt", package.commandLines().back());
}

TEST_F(menu_screen_test, HighlightsTheTextAfterTheNumber) {
    startMenu();
    session->press("3");
    awaitMenu("3");
    EXPECT_EQ(withPrompt(mainMenu, "> 3"), session->screen().rows());
    EXPECT_EQ("3,4 3,35", reversed());
    expectStyle(11, 2, -1, -1, true);
    session->press("8");
    awaitMenu("8");
    EXPECT_EQ("10,4 10,7", reversed());
}

TEST_F(menu_screen_test, MovesTheHighlightWithArrowKeysOfBothForms) {
    startMenu();
    const auto press = [&](const std::string& key, const std::string& number) {
        session->press(key);
        awaitMenu(number);
    };
    press("\x1b[B", "1");
    press("\x1bOB", "2");
    press("\x1b[A", "1");
    press("\x1bOA", "1");  // no wrap-around
    press("8", "8");
    press("\x1b[B", "8");
    press("\x1bOA", "7");
    press("\x1b[A", "6");  // across the blank line
    EXPECT_EQ("7,4 7,18", reversed());
}

TEST_F(menu_screen_test, StartsAtTheFirstLineWithKeyUp) {
    startMenu();
    session->press("\x1b[A");
    awaitMenu("1");
    EXPECT_EQ("1,4 1,57", reversed());
}

TEST_F(menu_screen_test, IgnoresOtherEscapeSequences) {
    startMenu();
    for (const char* key : {"\x1b[C", "\x1bOP", "\x1b[15~", "\x1b[AA", "\x1bx"}) {
        session->press(key);
        awaitMenu();
        EXPECT_EQ(mainMenu, session->screen().rows());
    }
    session->press("2");
    awaitMenu("2");
    session->press("\x1b[6~");
    awaitMenu("2");
    EXPECT_EQ(withPrompt(mainMenu, "> 2"), session->screen().rows());
}

TEST_F(menu_screen_test, RedrawsInPlace) {
    startMenu();
    const std::size_t before = session->output().size();
    session->press("1");
    awaitMenu("1");
    const std::string redraw = session->output().substr(before);
    EXPECT_TRUE(
        redraw.starts_with("\x1b"
                           "7\r\x1b[14A"))
        << redraw;
    EXPECT_EQ(std::string::npos, redraw.find(clearSequence));
}

TEST_F(menu_screen_test, ClearsAndDrawsWhereTheWindowIsTooShort) {
    startMenu(14, 80);
    session->press("2");
    session->awaitScreen("> 2");
    session->awaitKeyWait();
    rows_t expected = withPrompt(mainMenu, "> 2");
    expected.erase(expected.begin());  // the line feed after the last line scrolls
    EXPECT_EQ(expected, session->screen().rows());
}

TEST_F(menu_screen_test, RedrawsInPlaceInAWindowThatIsJustHighEnough) {
    startMenu(15, 80);
    const std::size_t before = session->output().size();
    session->press("2");
    awaitMenu("2");
    EXPECT_EQ(std::string::npos, session->output().find(clearSequence, before));
    EXPECT_EQ(withPrompt(mainMenu, "> 2"), session->screen().rows());
}

TEST_F(menu_screen_test, ClearsAndDrawsWhereTheWindowIsTooNarrow) {
    startMenu(24, 40);
    session->press("8");
    session->awaitScreen("> 8");
    session->press("7");
    session->awaitScreen("> 7");
    session->awaitKeyWait();
    const auto rows = session->screen().rows();
    EXPECT_EQ("       This tool will update Varn FW -->", rows.at(0));
    EXPECT_EQ(1, std::count(rows.begin(), rows.end(), "[1] Normal Flash of inactive Image with"));
    EXPECT_EQ(1, std::count(rows.begin(), rows.end(), "> 7"));
}

// Where a line ends exactly at the margin, some terminals wrap and some do not.
TEST_F(menu_screen_test, ClearsAndDrawsWhereALineReachesTheMargin) {
    for (const auto& [columns, clears] : {std::pair{58, true}, {59, false}}) {
        startMenu(24, columns);
        const std::size_t before = session->output().size();
        session->press("2");
        awaitMenu("2");
        EXPECT_EQ(clears, session->output().find(clearSequence, before) != std::string::npos);
    }
}

// A window of another size may have scrolled or wrapped what was drawn.
TEST_F(menu_screen_test, ClearsAndDrawsInAWindowThatHasChanged) {
    startMenu();
    const std::size_t before = awaitDrawing([this] { session->resize(30, 100); });
    EXPECT_NE(std::string::npos, session->output().find(clearSequence, before));
    EXPECT_EQ(withPrompt(mainMenu, ">"), session->screen().rows());
}

TEST_F(menu_screen_test, DrawsWithOneWrite) {
    startMenu();
    const long before = writeCalls(session->process());
    session->press("1");
    awaitMenu("1");
    EXPECT_EQ(before + 1, writeCalls(session->process()));
    session->press("6");
    awaitMenu("6");
    const long atLegal = writeCalls(session->process());
    session->press("\r");  // clear screen and menu in one
    session->awaitScreen("#LEGAL");
    awaitMenu();
    EXPECT_EQ(atLegal + 1, writeCalls(session->process()));
}

TEST_F(menu_screen_test, WaitsForAKeyWithoutUsingTheProcessor) {
    startMenu();
    const double before = processorMilliseconds(session->process());
    session->press("8");  // what follows starts from a known wait
    awaitMenu("8");
    const double start = processorMilliseconds(session->process());
    EXPECT_GT(start, before);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    session->await([&] { return std::chrono::steady_clock::now() > end; }, "three seconds");
    EXPECT_LT(processorMilliseconds(session->process()) - start, 10.0);
}

TEST_F(menu_screen_test, ShowsTheMenuOnOtherTerminals) {
    for (const char* terminal : {"linux", "xterm-256color", "screen", "tmux"}) {
        program.environment["TERM"] = terminal;
        startMenu();
        session->press("\x1b[B");
        awaitMenu("1");
        EXPECT_EQ(withPrompt(mainMenu, "> 1"), session->screen().rows()) << terminal;
        EXPECT_EQ("1,4 1,57", reversed()) << terminal;
    }
}
