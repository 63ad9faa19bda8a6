#include <csignal>
#include <functional>
#include <ostream>
#include <string_view>

#include "harness/tool_test.hpp"

namespace {

constexpr const char* clearSequence = "\x1b[H\x1b[2J";
constexpr std::string_view resetSequence = "\x1b(B\x1b[m";

struct window_t {
    const char* name;
    int columns;
    int rows;
};

void PrintTo(const window_t& window, std::ostream* out) { *out << window.name; }

/// Where somebody else may have drawn, the attributes are reset before the screen is cleared.
bool beginsWithClear(std::string_view drawing) {
    if (drawing.starts_with(resetSequence)) {
        drawing.remove_prefix(resetSequence.size());
    }
    return drawing.starts_with(clearSequence);
}

/// The way through the menus in a window where not everything may be in sight: the program's
/// output tells where it is.
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
        step("6", "> 6");
        step("\r", "#LEGAL");
        step("\x1b[B", "> 1");
        step("0", "Press ENTER to continue...");
        step("\r", "> 1");
        step("6", "> 6");
        step("\r", "Reboot Varn");
        step("8", "> 8");
    }

    /// Lets the program clear the screen and draw everything anew.
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

class emulated_window_test : public windows_test, public testing::WithParamInterface<window_t> {};

/// A release value with a control character: where that leads a terminal, only the terminal knows.
class control_character_test : public windows_test,
                               public testing::WithParamInterface<const char*> {};

/// Sizes that the emulator does not take: the window it shows stays as it was.
class unemulated_window_test : public windows_test {
protected:
    void startIn(int columns, int rows) {
        startMenu();
        before = awaitDrawing([&] { session->terminal().resize(rows, columns); });
    }
};

}  // namespace

TEST_P(emulated_window_test, ShowsWhatAFreshDrawingWould) {
    start(GetParam().rows, GetParam().columns);
    walk([&](const std::string& where) {
        const std::string seen = session->screen().picture();
        EXPECT_EQ(freshPicture(GetParam().rows, GetParam().columns), seen) << where;
    });
}

TEST_P(control_character_test, IsNotDrawnOverInPlace) {
    const std::string value = GetParam() == std::string("NUL")   ? std::string("2\0\0", 3)
                              : GetParam() == std::string("VT")  ? "2\v\v"
                              : GetParam() == std::string("ESC") ? "2\x1b[3B"
                                                                 : "2\f\b";
    package.write("releasefile-information.txt", "VARN_RELEASE=" + value + "1\nSDR_RELEASE=" +
                                                     value + "\nSYSTEM=RX\nIMAGE_NAME=fw.bin\n");
    start();
    press("\x1b[B", "> 1");
    for (const char* key : {"\x1b[B", "3", "\x1b[A", "8"}) {
        press(key, "> ");
        EXPECT_TRUE(lastOutput().starts_with(clearSequence)) << lastOutput();
        const std::string seen = session->screen().picture();
        EXPECT_EQ(freshPicture(24, 80), seen) << key;
    }
}

INSTANTIATE_TEST_SUITE_P(In, control_character_test, testing::Values("NUL", "VT", "ESC", "FF"),
                         [](const auto& name) { return name.param; });

INSTANTIATE_TEST_SUITE_P(Size, emulated_window_test,
                         testing::Values(window_t{"Small20x5", 20, 5},
                                         window_t{"Narrow20x60", 20, 60},
                                         window_t{"Flat100x5", 100, 5},
                                         window_t{"Usual80x24", 80, 24},
                                         window_t{"Large300x100", 300, 100}),
                         [](const auto& window) { return window.param.name; });

TEST_F(unemulated_window_test, TooSmallEitherWayIsClearedForEveryDrawing) {
    for (const window_t& window : {window_t{"one cell", 1, 1}, window_t{"one row", 100, 1},
                                   window_t{"one column", 1, 100}}) {
        startIn(window.columns, window.rows);
        walk([&](const std::string& where) {
            const bool isWarning = where.starts_with("Press");
            EXPECT_EQ(!isWarning, beginsWithClear(lastOutput())) << where << " in " << window.name;
        });
    }
}

// A serial line does not tell its size: what is on the screen is trusted to be whole.
TEST_F(unemulated_window_test, OfUnknownSizeIsDrawnOverInPlace) {
    startIn(0, 0);
    const std::string mainMenu =
        "\x1b"
        "7\r\x1b[14A";
    const std::string legalMenu =
        "\x1b"
        "7\r\x1b[12A";
    press("\x1b[B", "> 1");
    EXPECT_TRUE(lastOutput().starts_with(mainMenu)) << lastOutput();
    press("6", "> 6");
    EXPECT_TRUE(lastOutput().starts_with(mainMenu)) << lastOutput();
    press("\r", "#LEGAL");
    press("3", "> 3");
    EXPECT_TRUE(lastOutput().starts_with(legalMenu)) << lastOutput();
    press("x", "Press ENTER to continue...");
    press("\r", "> 3");
    press("\x1bOA", "> 2");
    EXPECT_TRUE(lastOutput().starts_with(legalMenu)) << lastOutput();
    EXPECT_EQ("> 2", session->screen().row(9));
    EXPECT_EQ("", session->screen().row(12));
    press("6", "> 6");
    press("\r", "Reboot Varn");
    press("4", "> 4");
    EXPECT_TRUE(lastOutput().starts_with(mainMenu)) << lastOutput();
}
