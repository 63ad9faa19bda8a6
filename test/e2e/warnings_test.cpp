#include <chrono>

#include "harness/tool_test.hpp"

namespace {

class warnings_test : public tool_test {
protected:
    /// The warning stands two lines below the menu, above its prompt; ENTER brings the menu
    /// back.
    void expectWarning(const std::string& text, const std::string& promptNumber = "") {
        session->awaitScreen("Press ENTER to continue...");
        session->awaitKeyWait();
        EXPECT_EQ("", session->screen().row(15));
        EXPECT_EQ("[WARN] " + text, session->screen().row(16));
        EXPECT_EQ("Press ENTER to continue...", session->screen().row(17));
        session->press("x");
        session->press("\r");
        awaitMenu(promptNumber);
        EXPECT_FALSE(session->screen().contains("[WARN]"));
    }
};

}  // namespace

TEST_F(warnings_test, RefuseNumbersThatNoLineHas) {
    startMenu();
    session->press("0");
    expectWarning("Wrong selection, please provide valid number : 0");
    session->press("9");
    expectWarning("Wrong selection, please provide valid number : 9");
}

TEST_F(warnings_test, RefuseOtherKeys) {
    startMenu();
    session->press("x");
    expectWarning("Wrong input, please confirm selection by 'ENTER' only : x");
    session->press("3");
    awaitMenu("3");
    session->press(" ");
    expectWarning("Wrong input, please confirm selection by 'ENTER' only :", "3");
}

// Repeated in the warning, the ESC would swallow the prompt after it.
TEST_F(warnings_test, ShowThePromptAfterALoneEscape) {
    startMenu();
    session->press("\x1b");
    expectWarning("Wrong input, please confirm selection by 'ENTER' only :");
}

// The reset is printed for such texts only.
TEST_F(warnings_test, ResetTheTerminalAfterControlCharactersOnly) {
    startMenu();
    const auto warningOf = [&](const std::string& key) {
        const std::size_t before = session->output().size();
        session->press(key);
        session->awaitScreen("Press ENTER");
        session->awaitKeyWait();
        const std::string output = session->output().substr(before);
        session->press("\r");
        awaitMenu();
        return output;
    };
    EXPECT_TRUE(warningOf("x").ends_with("only : x\r\nPress ENTER to continue...\r\n"));
    for (const char* control : {"\x9b", "\x7f"}) {
        EXPECT_TRUE(warningOf(control).ends_with("\r\n\x1b(B\x1b[mPress ENTER to continue...\r\n"));
    }
    EXPECT_TRUE(
        warningOf("\t").ends_with("only : \t\r\n\x1b(B\x1b[mPress ENTER to continue...\r\n"));
}

TEST_F(warnings_test, TellThatAFreshMenuHasNothingToConfirm) {
    startMenu();
    session->press("\r");
    expectWarning("Flashtools operation not supported");
}

TEST_F(warnings_test, TellThatAFreshLegalMenuHasNothingToShow) {
    startMenu();
    choose(6);
    session->awaitScreen("#LEGAL");
    session->press("\r");
    session->awaitScreen("[WARN] Text file not supported");
    session->press("\r");
    awaitMenu();
}

TEST_F(warnings_test, TellAboutMissingDocumentsAndReaders) {
    startMenu();
    package.remove("readme.txt");
    choose(5);
    expectWarning("Text file is not present ../readme.txt", "5");
    package.write("readme.txt", "back");
    for (const char* reader : {"less", "more", "cat"}) {
        package.remove(std::string("programs/") + reader);
    }
    session->press("\r");
    expectWarning("No programs available for txtfile reading", "5");
}

TEST_F(warnings_test, TellThatACommandCannotBeExecuted) {
    startMenu();
    package.remove("tool/varnflash");
    choose(7);
    session->awaitScreen("Press ENTER to continue...");
    EXPECT_TRUE(session->screen().contains("[WARN] Command cannot be executed properly"));
    session->press("\r");
    awaitMenu("7");
}

TEST_F(warnings_test, TellThatTheCoreProgramWasKilled) {
    startMenu();
    package.let("varnflash", "kill 9");
    choose(7);
    session->awaitScreen("Press ENTER to continue...");
    EXPECT_TRUE(session->screen().contains("[WARN] Command cannot be executed properly"));
    session->press("\r");
    awaitMenu("7");
}

TEST_F(warnings_test, WaitForEnterWithoutUsingTheProcessor) {
    startMenu();
    session->press("0");
    session->awaitScreen("Press ENTER to continue...");
    session->awaitKeyWait();
    const double start = processorMilliseconds(session->process());
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    session->await([&] { return std::chrono::steady_clock::now() > end; }, "three seconds");
    EXPECT_LT(processorMilliseconds(session->process()) - start, 10.0);
}
