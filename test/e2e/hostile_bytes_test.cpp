#include "harness/control_keys.hpp"
#include "harness/tool_test.hpp"

namespace {

/// Ctrl-Q and Ctrl-S never reach the program.
bool isTheDrivers(int byte) { return byte == goOn || byte == halt; }

/// One session in which every byte value is typed in turn.
class hostile_bytes_test : public tool_test {
protected:
    void startAtReadme() {
        startMenu();
        moveTo(readme);
        menu = session->screen().text();
    }

    /// Types the byte and expects the warning that a user has to confirm.
    void expectWarning(const std::string& keys) {
        const bool isDigit = keys.size() == 1 && keys >= "0" && keys <= "9";
        session->press(keys);
        session->awaitScreen(isDigit
                                 ? "[WARN] Wrong selection, please provide valid number : " + keys
                                 : "[WARN] Wrong input, please confirm selection by 'ENTER'");
        session->awaitScreen("Press ENTER to continue...");
        session->press("\r");
        expectMenu(keys);
    }

    /// The menu is as if nothing had been typed.
    void expectMenu(const std::string& keys) {
        awaitMenu(readme);
        EXPECT_EQ(menu, session->screen().text()) << "byte " << static_cast<int>(keys.back());
    }

    void expectMove(int byte) {
        const std::string digit(1, static_cast<char>(byte));
        moveTo(digit);
        session->press(readme);
        expectMenu(digit);
    }

    void expectConfirmation(int byte) {
        const std::size_t before = package.runs().size();
        session->press(std::string(1, static_cast<char>(byte)));
        session->await([&] { return package.runs().size() > before; }, "the reader");
        awaitMenu(readme);
        EXPECT_EQ("less ../readme.txt", package.commandLines().back());
    }

    void expectRedrawing(int byte) {
        awaitDrawing([&] { session->press(std::string(1, static_cast<char>(byte))); });
        EXPECT_EQ(menu, session->screen().text());
    }

    void expectOwnResult(int byte) {
        if (byte >= '1' && byte <= '0' + mainScreen().lastNumber()) {
            expectMove(byte);
        } else if (byte == '\f') {
            expectRedrawing(byte);
        } else if (byte == '\n' || byte == '\r') {
            expectConfirmation(byte);
        } else {
            expectWarning(std::string(1, static_cast<char>(byte)));
        }
    }

    const std::string readme = mainScreen().key(main_menu::readme);
    std::string menu;
};

}  // namespace

TEST_F(hostile_bytes_test, EveryByteAloneHasItsResult) {
    startAtReadme();
    for (int byte = 0; byte <= 0xff; ++byte) {
        if (byte != endOfText && !isTheDrivers(byte)) {
            expectOwnResult(byte);
        }
    }
}

// ESC plus any byte is an unknown key, like any longer sequence. It is ignored without a warning;
// an ENTER in it confirms nothing, and a digit moves nothing.
TEST_F(hostile_bytes_test, EveryByteAfterAnEscapeIsPassedOver) {
    startAtReadme();
    const std::size_t runs = package.runs().size();
    for (int byte = 0; byte <= 0xff; ++byte) {
        if (byte != endOfText && !isTheDrivers(byte)) {
            const std::string keys{escape, static_cast<char>(byte)};
            session->press(keys);
            expectMenu(keys);
        }
    }
    EXPECT_EQ(std::string::npos, session->output().find("[WARN]"));
    EXPECT_EQ(runs, package.runs().size());
    for (const std::string keys : {"\x1b[C", "\x1b[15~", "\x1b[AA"}) {
        session->press(keys);
        expectMenu(keys);
    }
    moveTo("3");
}

TEST_F(hostile_bytes_test, TheDriversBytesAreNoKeys) {
    startAtReadme();
    const std::size_t before = session->output().size();
    session->type(std::string{goOn, halt, goOn});
    moveTo("3");
    EXPECT_EQ(std::string::npos, session->output().find("[WARN]", before));
}

// To the program that is an escape key alone.
TEST_F(hostile_bytes_test, TheDriversBytesAfterAnEscapeAreNoSecondByte) {
    startAtReadme();
    expectWarning(std::string{escape, goOn});
    expectWarning(std::string{escape, halt, goOn});
}

TEST_F(hostile_bytes_test, CtrlCAfterAnEscapeEndsTheProgram) {
    startAtReadme();
    session->press(std::string{escape, endOfText});
    EXPECT_EQ(0, awaitEnd());
    EXPECT_TRUE(session->screen().contains("due to user interruption"));
    expectTerminalRestored();
}
