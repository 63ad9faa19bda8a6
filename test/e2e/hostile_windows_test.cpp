#include <csignal>
#include <functional>
#include <string_view>
#include <utility>

#include "harness/tool_test.hpp"

namespace {

constexpr const char* clearSequence = "\x1b[H\x1b[2J";
constexpr std::string_view resetSequence = "\x1b(B\x1b[m";

/// Where somebody else may have drawn, the attributes are reset before the screen is cleared.
bool beginsWithClear(std::string_view drawing) {
    if (drawing.starts_with(resetSequence)) {
        drawing.remove_prefix(resetSequence.size());
    }
    return drawing.starts_with(clearSequence);
}

/// Goes through the menus in a window that may not show everything: the program's output tells
/// where it is.
class windows_test : public tool_test {
protected:
    void press(const std::string& keys, const std::string& answer) {
        session->awaitKeyWait();
        before = session->output().size();
        session->press(keys);
        session->await([&] { return lastOutput().find(answer) != std::string::npos; }, answer);
        session->awaitKeyWait();
    }

    /// @return what was written since the last key
    std::string lastOutput() const { return session->output().substr(before); }

    /// @param look called after every key that leaves a menu or a warning on the screen
    void walk(const std::function<void(const std::string& where)>& look) {
        const auto step = [&](const std::string& keys, const std::string& answer) {
            press(keys, answer);
            look(answer);
        };
        step("\x1b[B", "> 1");
        step("3", "> 3");
        step("x", "Press ENTER to continue...");
        step("\r", "> 3");
        const std::string legal = mainScreen().key(main_menu::legalDocuments);
        step(legal, "> " + legal);
        step("\r", "#LEGAL");
        step("\x1b[B", "> 1");
        step("0", "Press ENTER to continue...");
        step("\r", "> 1");
        const std::string legalExit = legalScreen().key(legal_menu::exit);
        step(legalExit, "> " + legalExit);
        step("\r", "Reboot Varn");
        const std::string exit = mainScreen().key(main_menu::exit);
        step(exit, "> " + exit);
    }

    /// Lets the program clear the screen and draw everything again.
    std::string freshPicture(int rows, int columns) {
        before = awaitDrawing([this] { session->signal(SIGWINCH); });
        const std::string drawing = lastOutput();
        EXPECT_TRUE(beginsWithClear(drawing)) << drawing;
        terminal_screen fresh(rows, columns);
        fresh.write(drawing);
        return fresh.picture();
    }

    std::size_t before = 0;
};

/// Sizes that the emulator does not take: the window it shows stays as it was.
class unemulated_window_test : public windows_test {
protected:
    void startIn(int columns, int rows) {
        startMenu();
        before = awaitDrawing([&] { session->terminal().resize(rows, columns); });
    }
};

}  // namespace

TEST_F(windows_test, OfAnySizeShowWhatAFreshDrawingWould) {
    for (const auto& [columns, rows] : {std::pair{20, 5}, {80, 24}, {300, 100}}) {
        start(rows, columns);
        walk([&, rows = rows, columns = columns](const std::string& where) {
            const std::string seen = session->screen().picture();
            EXPECT_EQ(freshPicture(rows, columns), seen) << where;
        });
    }
}

TEST_F(unemulated_window_test, TooSmallEitherWayIsClearedForEveryDrawing) {
    for (const auto& [columns, rows] : {std::pair{1, 1}, {100, 1}, {1, 100}}) {
        startIn(columns, rows);
        walk([&](const std::string& where) {
            const bool isWarning = where.starts_with("Press");
            EXPECT_EQ(!isWarning, beginsWithClear(lastOutput())) << where;
        });
    }
}

// A serial line does not tell its size: what is on the screen is trusted to be whole.
TEST_F(unemulated_window_test, OfUnknownSizeIsDrawnOverInPlace) {
    const auto drawnOver = [](const shown_menu& menu) {
        return "\x1b"
               "7\r\x1b[" +
               std::to_string(menu.rowCount()) + "A";
    };
    startIn(0, 0);
    press("\x1b[B", "> 1");
    EXPECT_TRUE(lastOutput().starts_with(drawnOver(mainScreen()))) << lastOutput();
    press(mainScreen().key(main_menu::legalDocuments), "> ");
    press("\r", "#LEGAL");
    press("3", "> 3");
    EXPECT_TRUE(lastOutput().starts_with(drawnOver(legalScreen()))) << lastOutput();
    press("x", "Press ENTER to continue...");
    press("\r", "> 3");
    press("\x1bOA", "> 2");
    EXPECT_TRUE(lastOutput().starts_with(drawnOver(legalScreen()))) << lastOutput();
    EXPECT_EQ(legalScreen().rows("2"), session->screen().rows());
}

// Where a control character in a release value leads a terminal, only the terminal knows.
TEST_F(windows_test, WithAControlCharacterAreClearedForEveryDrawing) {
    for (const std::string& value : {std::string("2\0\0", 3), std::string("2\x1b[3B")}) {
        package.write("releasefile-information.txt", "VARN_RELEASE=" + value +
                                                         "1\nSDR_RELEASE=" + value +
                                                         "\nSYSTEM=SV\nIMAGE_NAME=fw.bin\n");
        start();
        press("\x1b[B", "> 1");
        press(mainScreen().key(main_menu::exit), "> ");
        EXPECT_TRUE(lastOutput().starts_with(clearSequence)) << lastOutput();
        const std::string seen = session->screen().picture();
        EXPECT_EQ(freshPicture(24, 80), seen);
        awaitDrawing([this] { session->terminal().resize(0, 0); });
        press(mainScreen().key(main_menu::reboot), "> ");
        EXPECT_TRUE(lastOutput().starts_with(clearSequence)) << lastOutput();
    }
}

// A window that is dragged to its size sends dozens of signals.
TEST_F(windows_test, ChangingManyTimesDoNotWearTheWaitOut) {
    startMenu();
    for (int columns = 81; columns < 120; ++columns) {
        awaitDrawing([&] { session->resize(24, columns); });
    }
    moveTo("4");
    EXPECT_EQ(std::string::npos, session->output().find("[WARN]"));
}
