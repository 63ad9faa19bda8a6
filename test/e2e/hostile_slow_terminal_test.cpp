#include "e2e/tool_test.hpp"

namespace {

constexpr int mostKeys = 200;  // some 100 KiB of drawings, more than any terminal has room for

/// A terminal behind a serial line: it takes a whole second for one drawing.
class hostile_slow_terminal_test : public tool_test {
protected:
    void SetUp() override {
        startMenu();
        session->press("1");
        awaitMenu("1");
        firstRow = session->screen().row(0);
        rowCount = session->screen().rows().size();
        session->takeOutputSlowly(true);
    }

    void expectWholeMenu(const std::string& number) {
        awaitMenu(number);
        session->awaitScreen("(c) 2026 Varn Firmware Tools");
        EXPECT_EQ(firstRow, session->screen().row(0));
        EXPECT_EQ(rowCount, session->screen().rows().size());
        EXPECT_EQ("[8] Exit", session->screen().row(10));
    }

    std::string firstRow;
    std::size_t rowCount = 0;
};

}  // namespace

TEST_F(hostile_slow_terminal_test, ShowsEveryDrawingWhole) {
    session->press("5");
    expectWholeMenu("5");
    session->press("x");
    session->awaitScreen("Press ENTER to continue...");
    session->press("\r");
    expectWholeMenu("5");
    session->press("\x1b[B");
    expectWholeMenu("6");
}

// A key that is held down makes more drawings than the line can take: the program has to wait, and
// shows the last one as whole as the first.
TEST_F(hostile_slow_terminal_test, HoldsTheProgramUpUntilItHasTakenEnough) {
    for (int key = 0; !session->isHeldUpByOutput(); ++key) {
        ASSERT_LT(key, mostKeys) << "nothing holds the program up";
        session->type(key % 2 == 0 ? "\x1b[B" : "\x1b[A");
        const auto isTaken = [&] {
            return session->isWaitingForKey() || session->isHeldUpByOutput();
        };
        session->await(isTaken, "the key to be taken");
    }
    const std::size_t taken = session->output().size();
    session->await([&] { return session->output().size() > taken + 100; }, "some more output");
    EXPECT_TRUE(session->isHeldUpByOutput());
    session->takeOutputSlowly(false);
    session->awaitKeyWait();
    session->press("7");
    expectWholeMenu("7");
}
