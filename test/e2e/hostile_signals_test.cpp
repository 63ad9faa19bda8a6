#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <ostream>
#include <tuple>

#include "harness/tool_test.hpp"

namespace {

enum class state_t { menu, warning, flash, flash_wait, pager, pager_wait, evaluation_pause };

struct state_row_t {
    state_t state;
    const char* name;
    const char* text;       ///< what is on the screen by then
    bool isKeyWait;         ///< the program waits for a key itself
    const char* following;  ///< the menu's number when all is over
};

constexpr state_row_t menuRow{state_t::menu, "Menu", "> 1", true, "1"};
constexpr state_row_t warningRow{state_t::warning, "Warning", "Press ENTER to cont", true, "1"};
constexpr state_row_t flashRow{state_t::flash, "Flash", "writing", false, "2"};
constexpr state_row_t flashWaitRow{state_t::flash_wait, "FlashWait", "written", true, "2"};
constexpr state_row_t pagerRow{state_t::pager, "Pager", "reading", false, "5"};
constexpr state_row_t pagerWaitRow{state_t::pager_wait, "PagerWait", "Press ENTER to close", true,
                                   "5"};
constexpr state_row_t pauseRow{state_t::evaluation_pause, "EvaluationPause",
                               "validation of inactive image, please wait", false, ""};

enum class event_t { hang_up, terminate, interrupt, quit, stop, resize };

struct event_row_t {
    event_t event;
    const char* name;
    int signal;
};

constexpr event_row_t hangUpRow{event_t::hang_up, "HangUp", SIGHUP};
constexpr event_row_t terminateRow{event_t::terminate, "Terminate", SIGTERM};
constexpr event_row_t interruptRow{event_t::interrupt, "Interrupt", SIGINT};
constexpr event_row_t quitRow{event_t::quit, "Quit", SIGQUIT};
constexpr event_row_t stopRow{event_t::stop, "StopAndContinue", SIGTSTP};
constexpr event_row_t resizeRow{event_t::resize, "Resize", SIGWINCH};

void PrintTo(const state_row_t& state, std::ostream* out) { *out << state.name; }
void PrintTo(const event_row_t& event, std::ostream* out) { *out << event.name; }

/// One of the program's states, and a signal that comes in just then.
class hostile_signals_test
    : public tool_test,
      public testing::WithParamInterface<std::tuple<state_row_t, event_row_t>> {
protected:
    hostile_signals_test() { mkfifo((package.root() / "go").c_str(), 0600); }

    static const state_row_t& state() { return std::get<0>(GetParam()); }
    static const event_row_t& event() { return std::get<1>(GetParam()); }

    void startProgram() {
        const bool isEvaluation = state().state == state_t::evaluation_pause;
        if (event().event == event_t::stop) {
            startFromShell(isEvaluation ? "--eval" : "");
        } else {
            program.arguments.resize(isEvaluation ? 2 : 1, "--eval");
            start();
        }
        if (!isEvaluation) {
            awaitMenu();
            session->press("1");
            awaitMenu("1");
        }
    }

    void enterState() {
        switch (state().state) {
            case state_t::warning:
                session->press("0");
                break;
            case state_t::flash:
            case state_t::flash_wait:
                package.let("varnflash", isState(state_t::flash)
                                             ? "print writing\nawait go\nprint written"
                                             : "print written");
                choose(2);
                break;
            case state_t::pager:
                package.let("less", "print reading\nawait go");
                choose(5);
                break;
            case state_t::pager_wait:
                package.remove("programs/less");
                choose(5);
                break;
            case state_t::menu:
            case state_t::evaluation_pause:
                break;
        }
        session->awaitScreen(state().text);
        if (state().isKeyWait) {
            session->awaitKeyWait();
        }
    }

    static bool isState(state_t wanted) { return state().state == wanted; }

    void causeEvent() {
        if (event().event == event_t::hang_up) {
            session->hangUp();
        } else if (event().event == event_t::resize) {
            session->resize(30, 100);
        } else {
            session->signal(event().signal);
        }
        if (event().event == event_t::stop) {
            session->awaitScreen("Stopped");
            EXPECT_TRUE(session->terminal().isCooked());
            EXPECT_TRUE(session->screen().isCursorVisible());
            session->type("fg\n");
            session->await([&] { return !session->terminal().isCooked(); }, "the program's mode");
            session->await([&] { return !session->screen().isCursorVisible(); },
                           "the cursor to be hidden");
        }
    }

    /// What the child waits for.
    void endChild() { std::ofstream(package.root() / "go") << "\n"; }

    bool hasChildEnded() const { return package.runs().back().ended; }

    void expectDeath() {
        EXPECT_EQ(128 + event().signal, awaitEnd());
        if (event().event != event_t::hang_up) {
            expectTerminalRestored();
        }
    }

    /// The writing goes on to its end, whether the program waits for that or is gone already.
    void expectWritingToItsEnd() {
        const bool isHeld = event().event != event_t::terminate;
        if (!isHeld) {
            expectDeath();
        }
        EXPECT_FALSE(hasChildEnded());
        EXPECT_EQ(!isHeld, session->hasEnded());
        endChild();
        session->await([&] { return hasChildEnded(); }, "the end of the core program");
        if (isHeld) {
            expectDeath();
        }
    }

    /// The program goes on where it was, and takes the next keys.
    void expectNoChange() {
        if (isState(state_t::evaluation_pause)) {
            session->awaitScreen("Preparing forced flash of 1st image");
            EXPECT_EQ(std::string::npos, session->output().find("[WARN]"));
            EXPECT_FALSE(session->screen().isCursorVisible());
            return;
        }
        if (isState(state_t::flash) || isState(state_t::pager)) {
            EXPECT_FALSE(hasChildEnded());
            endChild();
            session->await([&] { return hasChildEnded(); }, "the end of the child");
        }
        if (!isState(state_t::menu) && !isState(state_t::pager)) {
            session->press("\r");
        }
        awaitMenu(state().following);
        session->press("\x1b[B");
        awaitMenu(std::to_string(std::stoi(state().following) + 1));
        EXPECT_FALSE(session->screen().isCursorVisible());
        EXPECT_FALSE(session->terminal().isCooked());
    }
};

class deadly_signals_test : public hostile_signals_test {};
class harmless_signals_test : public hostile_signals_test {};

std::string pairName(
    const testing::TestParamInfo<std::tuple<state_row_t, event_row_t>>& parameter) {
    return std::string(std::get<0>(parameter.param).name) + std::get<1>(parameter.param).name;
}

const auto everyState =
    testing::Values(menuRow, warningRow, flashRow, flashWaitRow, pagerRow, pagerWaitRow, pauseRow);

}  // namespace

TEST_P(deadly_signals_test, EndTheProgramButNeverAFlash) {
    startProgram();
    enterState();
    causeEvent();
    if (isState(state_t::flash)) {
        expectWritingToItsEnd();
    } else {
        expectDeath();
    }
}

INSTANTIATE_TEST_SUITE_P(At, deadly_signals_test,
                         testing::Combine(everyState, testing::Values(hangUpRow, terminateRow,
                                                                      interruptRow, quitRow)),
                         pairName);

TEST_P(harmless_signals_test, ChangeNothingButTheDrawing) {
    startProgram();
    enterState();
    causeEvent();
    expectNoChange();
}

INSTANTIATE_TEST_SUITE_P(At, harmless_signals_test,
                         testing::Combine(everyState, testing::Values(stopRow, resizeRow)),
                         pairName);
