#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <memory>
#include <ostream>

#include "app/gui.hpp"
#include "harness/shown_menu.hpp"
#include "harness/terminal_session.hpp"
#include "harness/test_surroundings.hpp"
#include "support/menu_exception.hpp"

namespace {

using std::chrono::milliseconds;

/// The time of the menu, which the test lets pass. Shared with the process of the menu.
milliseconds* passed = nullptr;

/// The menu, and a user whose ENTER key is held down, or who knocks.
class one_press_test : public testing::Test {
protected:
    one_press_test() {
        passed =
            static_cast<milliseconds*>(mmap(nullptr, sizeof(milliseconds), PROT_READ | PROT_WRITE,
                                            MAP_SHARED | MAP_ANONYMOUS, -1, 0));
        package.let("varnflash", "print written");
        session = std::make_unique<terminal_session>([this] {
            const inside_package inside(package);
            enter_times::now = [] { return enter_times::clock_t::time_point(*passed); };
            return thrown<menu_exception>([] { gui(false).run(); });
        });
    }
    ~one_press_test() override { munmap(passed, sizeof(milliseconds)); }

    /// Presses a key as soon as the menu waits for one, but so much later by its clock.
    void press(const std::string& key, milliseconds later = milliseconds(0)) {
        session->awaitKeyWait();
        *passed += later;
        session->press(key);
    }

    void flash() {
        press("1");
        press("\r");
    }

    void warn() {
        press("1");
        press("x");
    }

    /// Holds ENTER down.
    void hold(milliseconds delay, milliseconds period) {
        constexpr int repeats = 12;
        press("\r");
        press("\r", delay);
        for (int repeat = 1; repeat < repeats; ++repeat) {
            press("\r", period);
        }
        session->awaitKeyWait();
    }

    /// @return the number of runs of this command line
    std::ptrdiff_t runsOf(const std::string& commandLine) const {
        const auto lines = package.commandLines();
        return std::count(lines.begin(), lines.end(), commandLine);
    }

    std::ptrdiff_t flashes() const { return runsOf("./varnflash ../fw.bin /i /logDebug"); }

    /// @return the number of flashes once the program waits for a key
    std::ptrdiff_t flashesAtLast() {
        session->awaitKeyWait();
        return flashes();
    }

    package_folder package;
    std::unique_ptr<terminal_session> session;
};

/// How a keyboard repeats a key: the delay before the first repeat, and the period of all others.
struct repeat_t {
    milliseconds delay;
    milliseconds period;
};

void PrintTo(const repeat_t& repeat, std::ostream* out) {
    *out << repeat.delay.count() << " " << repeat.period.count();
}

class held_enter_test : public one_press_test, public testing::WithParamInterface<repeat_t> {};

constexpr milliseconds quiet{1300};

/// What a terminal may send for one press of ENTER.
class line_end_test : public one_press_test, public testing::WithParamInterface<std::string> {};

}  // namespace

TEST_P(held_enter_test, AfterAFlashStartsNoOther) {
    flash();
    hold(GetParam().delay, GetParam().period);
    EXPECT_EQ(1, flashes());
    press("\r", quiet);
    EXPECT_EQ(2, flashesAtLast());
}

TEST_P(held_enter_test, AtAWarningStartsNoFlash) {
    warn();
    hold(GetParam().delay, GetParam().period);
    EXPECT_EQ(0, flashes());
    press("\r", quiet);
    EXPECT_EQ(1, flashesAtLast());
}

INSTANTIATE_TEST_SUITE_P(Keyboards, held_enter_test, testing::ValuesIn([] {
                             std::vector<repeat_t> repeats;
                             for (const int delay : {250, 500, 660, 900}) {
                                 for (const int period : {33, 40, 100, 500}) {
                                     repeats.push_back({milliseconds(delay), milliseconds(period)});
                                 }
                             }
                             return repeats;
                         }()),
                         [](const auto& keyboard) {
                             return "Delay" + std::to_string(keyboard.param.delay.count()) +
                                    "Period" + std::to_string(keyboard.param.period.count());
                         });

// The first of many that come 400 ms apart ends the wait after the flash.
TEST_F(one_press_test, CountsNoneOfAUserWhoKnocks) {
    flash();
    for (int knock = 0; knock < 5; ++knock) {
        press("\r", milliseconds(400));
    }
    EXPECT_EQ(1, flashesAtLast());
    press("\r", milliseconds(999));
    EXPECT_EQ(1, flashesAtLast());
    press("\r", milliseconds(1000));
    EXPECT_EQ(2, flashesAtLast());
}

// The core program says no each time, within no time.
TEST_F(one_press_test, RunsACoreProgramOnceThatRefusesAtOnce) {
    package.let("varnflash", "exit 1");
    press("1");
    hold(milliseconds(250), milliseconds(50));
    EXPECT_EQ(1, flashes());
}

TEST_F(one_press_test, CountsAtOnceAfterAnotherKey) {
    flash();
    press("\r");
    for (const char* key : {"1", "\x1b[A", "\x1bOA", "\f"}) {
        const std::ptrdiff_t before = flashesAtLast();
        press(key);
        press("\r");
        EXPECT_EQ(before + 1, flashesAtLast());
        press("\r");
    }
}

TEST_F(one_press_test, AppliesToTheRebootToo) {
    press(mainScreen().key(main_menu::reboot));
    press("\r");
    press("\r");
    press("\r");
    session->awaitKeyWait();
    EXPECT_EQ(1, runsOf("./varnflash /wr"));
}

TEST_F(one_press_test, HoldsUpNoDocument) {
    press(mainScreen().key(main_menu::readme));
    press("\r");
    press("\r");
    session->awaitKeyWait();
    EXPECT_EQ(2, runsOf("less ../readme.txt"));
}

// Some of its lines have the keys that flashes have in the main menu.
TEST_F(one_press_test, HoldsUpNothingOfTheLegalMenu) {
    press(mainScreen().key(main_menu::legalDocuments));
    press("\r");
    session->awaitScreen("#LEGAL");
    press("1");
    press("\r");
    press("\r");
    session->awaitKeyWait();
    EXPECT_EQ(2, runsOf("less ../eula_en.txt"));
    press(legalScreen().key(legal_menu::exit));
    press("\r");
    session->awaitScreen("Reboot Varn");
    press("\r");
    session->awaitScreen("#LEGAL");
}

TEST_F(one_press_test, HoldsUpNoExit) {
    press(mainScreen().key(main_menu::exit));
    press("x");
    press("\r");
    press("\r");
    EXPECT_EQ("user normal exit", session->result());
}

// Nor what stands below the menu when nothing is highlighted.
TEST_F(one_press_test, HoldsUpNoWarning) {
    for (int round = 0; round < 2; ++round) {
        press("\r");
        session->awaitScreen("Flashtools operation not supported");
        press("\r");
        session->await([this] { return !session->screen().contains("not supported"); }, "the menu");
    }
}

// The second byte must not end the wait after the flash: nobody would see its result.
TEST_P(line_end_test, ChoosesAFlashAndDoesNotEndTheWaitAfterIt) {
    press("1");
    press(GetParam());
    session->awaitKeyWait();
    EXPECT_TRUE(session->screen().contains("written"));
    EXPECT_EQ(1, flashes());
    press(GetParam());
    session->await([this] { return !session->screen().contains("written"); }, "the menu");
    EXPECT_EQ(1, flashesAtLast());
}

// Where its second byte comes a little later.
TEST_P(line_end_test, MayComeInPieces) {
    press("1");
    press(GetParam().substr(0, 1));
    session->await(
        [this] { return session->isWaitingForMore() || session->screen().contains("wri"); },
        "the wait for the second byte");
    const bool isInTime = !session->screen().contains("Starting");
    session->type(GetParam().substr(1));
    session->awaitKeyWait();
    EXPECT_TRUE(!isInTime || session->screen().contains("written"));
    EXPECT_EQ(1, flashes());
}

INSTANTIATE_TEST_SUITE_P(Bytes, line_end_test,
                         testing::Values("\r\n", "\n\r", std::string("\r\0", 2)),
                         [](const auto& bytes) {
                             return bytes.param == "\r\n"   ? "CrLf"
                                    : bytes.param == "\n\r" ? "LfCr"
                                                            : "CrNul";
                         });
