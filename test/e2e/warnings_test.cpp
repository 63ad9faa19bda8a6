#include "harness/tool_test.hpp"

namespace {

class warnings_test : public tool_test {
protected:
    /// The warning stands two lines below the menu, above its prompt; ENTER brings the menu back.
    void expectWarning(const std::string& text, const std::string& promptNumber = "") {
        awaitEnterPrompt();
        const int menuEnd = mainScreen().rowCount();
        EXPECT_EQ("", session->screen().row(menuEnd + 1));
        EXPECT_EQ("[WARN] " + text, session->screen().row(menuEnd + 2));
        EXPECT_EQ("Press ENTER to continue...", session->screen().row(menuEnd + 3));
        session->press("x");
        session->press("\r");
        awaitMenu(promptNumber);
        EXPECT_FALSE(session->screen().contains("[WARN]"));
    }

    /// @return what the program writes at this key
    std::string warningOf(const std::string& key) {
        const std::size_t before = session->output().size();
        session->press(key);
        awaitEnterPrompt();
        const std::string output = session->output().substr(before);
        session->press("\r");
        awaitMenu();
        return output;
    }
};

}  // namespace

TEST_F(warnings_test, RefuseNumbersThatNoLineHas) {
    startMenu();
    session->press("0");
    expectWarning("Wrong selection, please provide valid number : 0");
    for (int number = mainScreen().lastNumber() + 1; number <= 9; ++number) {
        session->press(std::to_string(number));
        expectWarning("Wrong selection, please provide valid number : " + std::to_string(number));
    }
}

TEST_F(warnings_test, RefuseOtherKeys) {
    startMenu();
    moveTo("3");
    session->press("x");
    expectWarning("Wrong input, please confirm selection by 'ENTER' only : x", "3");
}

// Repeated in the warning, the ESC would swallow the prompt after it. The reset is printed for such
// texts only.
TEST_F(warnings_test, ResetTheTerminalAfterControlCharactersOnly) {
    startMenu();
    EXPECT_TRUE(warningOf("x").ends_with("only : x\r\nPress ENTER to continue...\r\n"));
    for (const char* control : {"\x1b", "\t", "\x7f", "\x9b"}) {
        EXPECT_TRUE(warningOf(control).ends_with(std::string("only : ") + control +
                                                 "\r\n\x1b(B\x1b[mPress ENTER to continue...\r\n"));
    }
}

TEST_F(warnings_test, TellThatAFreshMenuHasNothingToConfirm) {
    startMenu();
    session->press("\r");
    expectWarning("Flashtools operation not supported");
    choose(mainScreen().number(main_menu::legalDocuments));
    session->awaitScreen("#LEGAL");
    session->press("\r");
    session->awaitScreen("[WARN] Text file not supported");
}

TEST_F(warnings_test, WaitForEnterWithoutUsingTheProcessor) {
    startMenu();
    session->press("0");
    awaitEnterPrompt();
    expectIdle();
}
