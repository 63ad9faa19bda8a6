#include <sys/stat.h>
#include <sys/syscall.h>

#include <csignal>
#include <fstream>

#include "fault/fault_test.hpp"

namespace {

std::string pastedList() {
    std::string list;
    for (int number = 1; number <= 100; ++number) {
        list += std::to_string(number % 10) + " server\r";
    }
    return list;
}

/// A terminal that is still busy with a drawing when its user types.
class held_drawing_test : public fault_test {
protected:
    /// @param drain of which drawing, 1 for the first
    /// @param interruptions how many there are before it is held up
    void startWithHeld(int drain, int interruptions = 0) {
        mkfifo(fifo.c_str(), 0600);
        package.remove("runs.log");
        program.environment["FAULT_HOLD"] = fifo;
        start("tcdrain:" + std::to_string(drain) + ":" + std::to_string(drain + interruptions) +
              ":held");
    }

    void awaitHold() {
        const auto isHeld = [this] {
            return hasFailed() && currentSystemCall(session->process()).number == SYS_openat;
        };
        session->await(isHeld, "the drawing to be held up");
    }

    void endHold() { std::ofstream{fifo}; }

    bool isNothingChosen() const {
        return isMenuShown() && !session->screen().contains("[WARN]") &&
               package.runs().size() == 1;  // the question at the start
    }

    const std::string fifo = (package.root() / "hold").string();
};

class early_signal_test : public fault_test {};

}  // namespace

// Nobody can have seen the menu yet.
TEST_F(held_drawing_test, LetsNothingBeChosenThatIsTypedMeanwhile) {
    for (const std::string& typed : {pastedList(), std::string("1\r\n"), std::string("x")}) {
        startWithHeld(1);
        awaitHold();
        session->type(typed);
        endHold();
        session->awaitKeyWait();
        EXPECT_TRUE(isNothingChosen()) << session->screen().text();
        moveTo("3");
    }
}

// The line feed is what the carriage return before it brought along.
TEST_F(held_drawing_test, TakesTheSecondByteOfALineEndForNoEnter) {
    startWithHeld(3);
    session->press("1");
    session->press("x");
    session->awaitScreen("Press ENTER");
    session->press("\r");
    awaitHold();
    session->type("\n");
    endHold();
    session->awaitKeyWait();
    EXPECT_TRUE(isNothingChosen()) << session->screen().text();
    EXPECT_TRUE(session->screen().contains("\n> 1\n"));
}

// A stop, for one, interrupts it.
TEST_F(held_drawing_test, IsWaitedForAfterAnInterruption) {
    startWithHeld(1, 3);
    awaitHold();
    session->type("x");
    endHold();
    session->awaitKeyWait();
    EXPECT_TRUE(isNothingChosen()) << session->screen().text();
}

TEST_F(held_drawing_test, DoesNotKeepASignalFromEndingTheProgram) {
    startWithHeld(1);
    awaitHold();
    session->signal(SIGTERM);
    EXPECT_EQ(128 + SIGTERM, awaitEnd());
    expectTerminalRestored();
}

// What the terminal has not taken yet is not drawn over: that follows.
TEST_F(held_drawing_test, IsFollowedByTheDrawingForANewWindow) {
    startWithHeld(1);
    awaitHold();
    const std::size_t before = session->output().size();
    session->resize(30, 100);
    endHold();
    session->awaitKeyWait();
    EXPECT_NE(std::string::npos, session->output().find("\x1b[H\x1b[2J", before));
}

// Neither is lost when it comes in between the last look and the wait.
TEST_F(early_signal_test, OfTheWindowDrawsTheMenuAnew) {
    start("epoll_pwait:1:1:window");
    const std::string title = "This tool will update";
    session->await(
        [&] {
            const std::size_t first = session->output().find(title);
            return first != std::string::npos &&
                   session->output().find(title, first + 1) != std::string::npos;
        },
        "a second drawing");
    EXPECT_TRUE(hasFailed());
}

TEST_F(early_signal_test, AfterAStopTakesTheTerminalsModeBack) {
    package.let("varnflash", "print written");
    for (const char* wait : {"1", "3", "4"}) {
        start(std::string("epoll_pwait:") + wait + ":" + wait + ":continue");
        session->press("1");
        session->press("\r");
        session->awaitScreen("written");
        session->press("\r");
        session->awaitKeyWait();
        EXPECT_TRUE(hasFailed());
        EXPECT_FALSE(session->terminal().isCooked()) << wait;
    }
}
