#include <poll.h>

#include "harness/tool_test.hpp"

namespace {

/// A user who stops the output with Ctrl-S and types on.
class stopped_output_test : public tool_test {
protected:
    /// Nothing of what the program writes is seen until the user lets the output go on.
    void pressWhileStopped(const std::string& key) {
        session->awaitKeyWait();
        const std::string before = session->screen().text();
        session->type("\x13");
        session->press(key);
        session->await([&] { return session->isHeldUpByOutput(); }, "the drawing to be held up");
        EXPECT_EQ(before, session->screen().text());
    }

    void goOn() { session->type("\x11"); }
};

/// A terminal on a serial line: it takes a whole second for one drawing.
class slow_output_test : public tool_test {
protected:
    void SetUp() override {
        startMenu();
        moveTo("1");
        firstRow = session->screen().row(0);
        rowCount = session->screen().rows().size();
        session->takeOutputSlowly(true);
    }

    void expectWholeMenu(const std::string& number) {
        awaitMenu(number);
        session->awaitScreen("(c) 2026 Varn Firmware Tools");
        EXPECT_EQ(firstRow, session->screen().row(0));
        EXPECT_EQ(rowCount, session->screen().rows().size());
        EXPECT_EQ(mainScreen().text(main_menu::exit),
                  session->screen().row(mainScreen().row(main_menu::exit)));
    }

    /// Some looks in a row tell a wait for the terminal from a write that is just going on.
    bool isHeldUp() const {
        for (int look = 0; look < 10; ++look) {
            if (!session->isHeldUpByOutput()) {
                return false;
            }
            poll(nullptr, 0, 1);
        }
        return true;
    }

    std::string firstRow;
    std::size_t rowCount = 0;
};

}  // namespace

// Keys that follow the first one before the screen shows its effect are discarded.
TEST_F(stopped_output_test, ShowsOneKeysMoveAndForgetsTheOthers) {
    startMenu();
    moveTo("1");
    const std::size_t runs = package.runs().size();
    pressWhileStopped("\x1b[B");
    session->type("3\r7\r");
    goOn();
    awaitMenu("2");
    EXPECT_EQ(mainScreen().rows("2"), session->screen().rows());
    EXPECT_EQ(runs, package.runs().size());
    moveTo("4");
}

TEST_F(stopped_output_test, ShowsAWarningWhole) {
    startMenu();
    pressWhileStopped("x");
    goOn();
    session->awaitScreen("Press ENTER to continue...");
    EXPECT_EQ("[WARN] Wrong input, please confirm selection by 'ENTER' only : x",
              session->screen().row(mainScreen().rowCount() + 2));
    pressWhileStopped("\r");
    goOn();
    awaitMenu();
}

TEST_F(slow_output_test, ShowsEveryDrawingWhole) {
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
TEST_F(slow_output_test, HoldsTheProgramUpUntilItHasTakenEnough) {
    constexpr int mostKeys = 200;  // some 100 KiB of drawings, more than any terminal has room for
    for (int key = 0; !isHeldUp(); ++key) {
        ASSERT_LT(key, mostKeys) << "nothing holds the program up";
        const long before = writeCalls(session->process());
        session->type(key % 2 == 0 ? "\x1b[B" : "\x1b[A");
        // A key that arrives too early is discarded; the next one counts.
        for (int look = 0; look < 50 && writeCalls(session->process()) == before; ++look) {
            poll(nullptr, 0, 1);
        }
    }
    const std::size_t taken = session->output().size();
    session->await([&] { return session->output().size() > taken + 100; }, "some more output");
    session->takeOutputSlowly(false);
    session->awaitKeyWait();
    session->press("4");
    expectWholeMenu("4");
}
