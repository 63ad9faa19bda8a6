#include "harness/tool_test.hpp"

namespace {

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

    /// @return what reversed() is when this entry is highlighted
    static std::string textOf(const shown_menu& menu, menu_item_t item) {
        const std::string row = std::to_string(menu.row(item));
        const std::size_t numberPrefix = 4;  // "[5] "
        return row + "," + std::to_string(numberPrefix) + " " + row + "," +
               std::to_string(menu.text(item).size() - 1);
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
    EXPECT_EQ(mainScreen().rows(), session->screen().rows());
    EXPECT_FALSE(session->screen().isCursorVisible());
    EXPECT_FALSE(session->terminal().isCooked());
    EXPECT_EQ("", reversed());
}

TEST_F(menu_screen_test, ShowsTheMainMenusColours) {
    startMenu();
    expectStyle(0, 56, 7, 4, true);  // 43 characters between seven blanks on each side
    expectStyle(1, 57, -1, -1, false);
    expectStyle(mainScreen().row(main_menu::prompt), 1, -1, -1, true);
    expectStyle(mainScreen().row(main_menu::information), 37, 1, -1, false);
    expectStyle(mainScreen().row(main_menu::notice), 27, 4, -1, false);
}

TEST_F(menu_screen_test, ShowsNoEmergencyFlashWhenTheCoreProgramSaysSo) {
    package.let("varnflash", "exit 55");
    startMenu();
    menu_elem_t menu = makeMainMenu();
    menu.lines.erase(main_menu::emergencyFlash);
    const shown_menu expected(menu);
    EXPECT_EQ(expected.rows(), session->screen().rows());
    moveTo(expected.key(main_menu::readme));
    EXPECT_EQ(textOf(expected, main_menu::readme), reversed());
}

TEST_F(menu_screen_test, HighlightsTheTextAfterTheNumber) {
    startMenu();
    moveTo("3");
    EXPECT_EQ(mainScreen().rows("3"), session->screen().rows());
    EXPECT_EQ("3,4 3,35", reversed());
    expectStyle(mainScreen().row(main_menu::prompt), 2, -1, -1, true);
    moveTo(mainScreen().key(main_menu::exit));
    EXPECT_EQ(textOf(mainScreen(), main_menu::exit), reversed());
}

TEST_F(menu_screen_test, MovesTheHighlightWithArrowKeysOfBothForms) {
    startMenu();
    const auto press = [&](const std::string& key, const std::string& number) {
        session->press(key);
        awaitMenu(number);
    };
    press("\x1b[A", "1");  // up from nowhere
    press("\x1bOB", "2");
    press("\x1b[A", "1");
    press("\x1bOA", "1");  // no wrap-around
    const std::string last = mainScreen().key(main_menu::exit);
    press(last, last);
    press("\x1b[B", last);
    press("\x1bOA", mainScreen().key(main_menu::reboot));
    press("\x1b[A", mainScreen().key(main_menu::legalDocuments));  // across the blank line
    EXPECT_EQ(textOf(mainScreen(), main_menu::legalDocuments), reversed());
}

// Where a line ends exactly at the margin, some terminals wrap and some do not; and after the last
// row a line feed scrolls.
TEST_F(menu_screen_test, RedrawsInPlaceWhereTheWindowIsLargeEnough) {
    const int menuRows = mainScreen().rowCount();
    const std::string drawnOver =
        "\x1b"
        "7\r\x1b[" +
        std::to_string(menuRows) + "A";
    struct window_t {
        int rows;
        int columns;
        bool isLargeEnough;
    };
    for (const auto& [rows, columns, isLargeEnough] : {window_t{menuRows + 1, 80, true},
                                                       {menuRows, 80, false},
                                                       {24, 59, true},
                                                       {24, 58, false}}) {
        startMenu(rows, columns);
        const std::size_t before = session->output().size();
        session->press("2");
        awaitMenu("2");
        const std::string redraw = session->output().substr(before);
        EXPECT_TRUE(redraw.starts_with(isLargeEnough ? drawnOver : "\x1b[H\x1b[2J"))
            << rows << "x" << columns << redraw;
        std::vector<std::string> expected = mainScreen().rows("2");
        expected.erase(expected.begin(), expected.begin() + (rows > menuRows ? 0 : 1));
        EXPECT_EQ(expected, session->screen().rows());
    }
}

TEST_F(menu_screen_test, DrawsWithOneWrite) {
    startMenu();
    const long before = writeCalls(session->process());
    session->press("1");
    awaitMenu("1");
    EXPECT_EQ(before + 1, writeCalls(session->process()));
    moveTo(mainScreen().key(main_menu::legalDocuments));
    const long atLegal = writeCalls(session->process());
    session->press("\r");  // clear screen and menu in one
    session->awaitScreen("#LEGAL");
    awaitMenu();
    EXPECT_EQ(atLegal + 1, writeCalls(session->process()));
    awaitDrawing([this] { session->press("\f"); });
    EXPECT_EQ(atLegal + 2, writeCalls(session->process()));
}

// As after a message of the kernel on a console, which no program is told of.
TEST_F(menu_screen_test, DrawsAnewWhatAMessageHasOverwritten) {
    startMenu();
    moveTo("3");
    const std::string before = session->screen().picture();
    const std::string message = "\x1b[31m[ 12.345] usb 1-1: new device\r\n";
    ASSERT_LT(0, write(session->terminal().slave(), message.data(), message.size()));
    session->awaitScreen("new device");
    awaitDrawing([this] { session->press("\f"); });
    EXPECT_EQ(before, session->screen().picture());
}

TEST_F(menu_screen_test, WaitsForAKeyWithoutUsingTheProcessor) {
    startMenu();
    moveTo("1");
    expectIdle();
}

TEST_F(menu_screen_test, ShowsTheMenuOnOtherTerminals) {
    for (const char* terminal : {"linux", "xterm-256color", "screen", "tmux"}) {
        program.environment["TERM"] = terminal;
        startMenu();
        session->press("\x1b[B");
        awaitMenu("1");
        EXPECT_EQ(mainScreen().rows("1"), session->screen().rows()) << terminal;
        EXPECT_EQ("1,4 1,57", reversed()) << terminal;
    }
}
