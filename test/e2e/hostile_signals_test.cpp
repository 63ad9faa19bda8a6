#include <csignal>
#include <ostream>
#include <tuple>

#include "harness/tool_test.hpp"

namespace {

/// One of the program's states, reached from the main menu with number 1 highlighted.
struct state_t {
    const char* name;
    std::vector<std::string> keys;
    const char* text;        ///< what is on the screen by then
    std::string following;   ///< the menu's number when all is over
    std::string child = "";  ///< the program that is running, if one is
    bool isEvaluation = false;
};

const std::string readme = mainScreen().key(main_menu::readme);

const auto everyState = testing::Values(
    state_t{"Menu", {}, "> 1", "1"}, state_t{"Warning", {"0"}, "Press ENTER to cont", "1"},
    state_t{"Flash", {"2", "\r"}, "at work", "2", "varnflash"},
    state_t{"FlashWait", {"2", "\r"}, "written", "2"},
    state_t{"Pager", {readme, "\r"}, "at work", readme, "more"},
    state_t{"PagerWait", {readme, "\r"}, "Press ENTER to close", readme},
    state_t{"EvaluationPause", {}, "inactive image, please wait", "", "", true});

struct event_t {
    const char* name;
    int signal;
};

void PrintTo(const state_t& state, std::ostream* out) { *out << state.name; }
void PrintTo(const event_t& event, std::ostream* out) { *out << event.name; }

/// A signal comes in while the program is in some state.
class hostile_signals_test : public tool_test,
                             public testing::WithParamInterface<std::tuple<state_t, event_t>> {
protected:
    static const state_t& state() { return std::get<0>(GetParam()); }
    static int signal() { return std::get<1>(GetParam()).signal; }

    void startInState() {
        package.remove("programs/less");
        if (state().isEvaluation) {
            program.arguments.emplace_back("--eval");
        }
        if (signal() == SIGTSTP) {
            startFromShell(state().isEvaluation ? "--eval" : "");
        } else {
            start();
        }
        if (!state().isEvaluation) {
            awaitMenu();
            moveTo("1");
        }
        package.let("varnflash", "print written");
        if (!state().child.empty()) {
            package.hold(state().child);
        }
        for (const std::string& key : state().keys) {
            session->press(key);
        }
        session->awaitScreen(state().text);
        if (state().child.empty() && !state().isEvaluation) {
            session->awaitKeyWait();
        }
    }

    void causeEvent() {
        switch (signal()) {
            case SIGHUP:
                return session->hangUp();
            case SIGWINCH:
                return session->resize(30, 100);
            case SIGTSTP:
                return stopAndContinue();
            case SIGINT:  // to the whole group, as from a terminal
                EXPECT_EQ(0, kill(-session->process(), SIGINT));
                return;
            default:
                session->signal(signal());
        }
    }

    void stopAndContinue() {
        session->signal(SIGTSTP);
        session->awaitScreen("Stopped");
        expectTerminalRestored();
        session->type("fg\n");
        session->await([&] { return !session->terminal().isCooked(); }, "the program's mode");
        session->await([&] { return !session->screen().isCursorVisible(); },
                       "the cursor to be hidden");
    }

    void expectDeath() {
        EXPECT_EQ(128 + signal(), awaitEnd());
        if (signal() != SIGHUP) {
            expectTerminalRestored();
        }
    }

    void endChild() {
        EXPECT_FALSE(package.runs().back().ended);
        package.letGo();
        session->await([&] { return package.runs().back().ended; }, "the end of the child");
    }
};

class deadly_signals_test : public hostile_signals_test {};
class harmless_signals_test : public hostile_signals_test {};

std::string pairName(const testing::TestParamInfo<std::tuple<state_t, event_t>>& parameter) {
    return std::string(std::get<0>(parameter.param).name) + std::get<1>(parameter.param).name;
}

}  // namespace

// The writing goes on to its end, whether the program waits for that or is gone already.
TEST_P(deadly_signals_test, EndTheProgramButNeverAFlash) {
    startInState();
    causeEvent();
    const bool isFlash = state().child == "varnflash";
    const bool isHeld = isFlash && signal() != SIGTERM;
    if (isHeld) {
        EXPECT_FALSE(session->hasEnded());
        endChild();
    }
    expectDeath();
    if (isFlash && !isHeld) {
        endChild();
    }
}

INSTANTIATE_TEST_SUITE_P(At, deadly_signals_test,
                         testing::Combine(everyState, testing::Values(event_t{"HangUp", SIGHUP},
                                                                      event_t{"Terminate", SIGTERM},
                                                                      event_t{"Interrupt", SIGINT},
                                                                      event_t{"Quit", SIGQUIT})),
                         pairName);

// The program goes on where it was, and takes the next keys.
TEST_P(harmless_signals_test, ChangeNothingButTheDrawing) {
    startInState();
    causeEvent();
    if (state().isEvaluation) {
        session->awaitScreen("Preparing forced flash of 1st image");
        EXPECT_EQ(std::string::npos, session->output().find("[WARN]"));
        EXPECT_FALSE(session->screen().isCursorVisible());
        return;
    }
    if (!state().child.empty()) {
        endChild();
    }
    if (!state().keys.empty()) {
        session->press("\r");
    }
    awaitMenu(state().following);
    session->press("\x1b[B");
    awaitMenu(std::to_string(std::stoi(state().following) + 1));
    EXPECT_FALSE(session->screen().isCursorVisible());
    EXPECT_FALSE(session->terminal().isCooked());
}

INSTANTIATE_TEST_SUITE_P(At, harmless_signals_test,
                         testing::Combine(everyState,
                                          testing::Values(event_t{"StopAndContinue", SIGTSTP},
                                                          event_t{"Resize", SIGWINCH})),
                         pairName);
