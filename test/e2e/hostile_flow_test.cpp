#include "harness/tool_test.hpp"

namespace {

constexpr const char* halt = "\x13";  // Ctrl-S
constexpr const char* goOn = "\x11";  // Ctrl-Q

/// A user who stops the output and types on.
class hostile_flow_test : public tool_test {
protected:
    /// Nothing of what the program writes is seen until the user lets the output go on.
    void pressWhileHalted(const std::string& key) {
        session->awaitKeyWait();
        const std::string before = session->screen().text();
        session->type(halt);
        session->press(key);
        session->await([&] { return session->isHeldUpByOutput(); }, "the drawing to be held up");
        EXPECT_EQ(before, session->screen().text());
    }

    /// What a clear and a drawing at once would show.
    std::string freshText(int rows, int columns) {
        const std::size_t before = awaitDrawing([&] { session->resize(rows, columns); });
        terminal_screen fresh(rows, columns);
        fresh.write(session->output().substr(before));
        return fresh.text();
    }
};

}  // namespace

TEST_F(hostile_flow_test, AKeyTypedMeanwhileMovesTheHighlightOnceShown) {
    startMenu();
    session->press("2");
    awaitMenu("2");
    pressWhileHalted("\x1b[B");
    session->type(goOn);
    awaitMenu("3");
    const std::string seen = session->screen().text();
    EXPECT_EQ(freshText(25, 80), seen);
    session->press("\x1b[B");
    awaitMenu("4");
}

TEST_F(hostile_flow_test, AWarningIsShownWhole) {
    startMenu();
    pressWhileHalted("x");
    session->type(goOn);
    session->awaitScreen("Press ENTER to continue...");
    EXPECT_EQ("[WARN] Wrong input, please confirm selection by 'ENTER' only : x",
              session->screen().row(16));
    pressWhileHalted("\r");
    session->type(goOn);
    awaitMenu();
    session->press("4");
    awaitMenu("4");
}

// Typed in front of a screen that does not show them, they are not to do anything later.
TEST_F(hostile_flow_test, KeysAfterTheFirstAreThrownAway) {
    startMenu();
    const std::size_t runs = package.runs().size();
    pressWhileHalted("1");
    session->type("2\r7\r");
    session->type(goOn);
    awaitMenu("1");
    EXPECT_EQ(runs, package.runs().size());
    session->press("3");
    awaitMenu("3");
}
