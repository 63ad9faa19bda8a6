#include <algorithm>
#include <chrono>
#include <ostream>

#include "harness/process_state.hpp"
#include "harness/tool_test.hpp"

namespace {

using std::chrono::milliseconds;

struct typing_t {
    const char* name;
    std::vector<std::string> pieces;
    const char* from;  ///< the number where the highlight stands before
};

void PrintTo(const typing_t& typing, std::ostream* out) { *out << typing.name; }

/// Each key and each form once, cut at one byte or at every one. Every key moves to number 4.
const std::vector<typing_t> typings{
    {"DownCutAfterEscape", {"\x1b", "[B"}, "3"},
    {"OtherDownCutBeforeLast", {"\x1bO", "B"}, "3"},
    {"UpByteByByte", {"\x1b", "[", "A"}, "5"},
    {"OtherUpByteByByte", {"\x1b", "O", "A"}, "5"},
};

/// An arrow key from a line that delivers its bytes in pieces.
class hostile_gaps_test : public tool_test, public testing::WithParamInterface<typing_t> {
protected:
    // On a busy machine a pause may become longer than it was meant to be: once out of so many
    // attempts, the right result has to show.
    static constexpr int mostAttempts = 20;

    /// Types each piece once the program waits for the rest of the key.
    void typeWhileItWaits() {
        session->press(GetParam().pieces.front());
        for (std::size_t next = 1; next < GetParam().pieces.size(); ++next) {
            session->await([&] { return isAtNewWaitForMore() || isWarned(); }, "a wait for more");
            sleepsBefore = timesBlocked(session->process());
            session->type(GetParam().pieces[next]);
        }
    }

    /// Types each piece once the program has given up the wait for it.
    /// @return how long it has waited for the second one, or longer
    milliseconds typeAfterTheWait() {
        session->awaitKeyWait();
        const auto start = std::chrono::steady_clock::now();
        session->press(GetParam().pieces.front());
        session->awaitKeyWait();
        const auto end = std::chrono::steady_clock::now();
        for (std::size_t next = 1; next < GetParam().pieces.size(); ++next) {
            session->press(GetParam().pieces[next]);
        }
        return std::chrono::duration_cast<milliseconds>(end - start);
    }

    /// @return true when the pieces were taken for one key; ends at the menu in any case
    bool isTakenForOneKey() {
        session->await([&] { return isWarned() || session->screen().contains("> 4"); },
                       "a warning or a move");
        const bool isWhole = !isWarned();
        if (!isWhole) {
            session->press("\r");
        }
        awaitMenu(isWhole ? "4" : GetParam().from);
        return isWhole;
    }

    bool isWarned() const { return session->screen().contains("Press ENTER to continue..."); }

private:
    /// The looks at a moving process do not happen at once: they have to agree on one sleep.
    bool isAtNewWaitForMore() const {
        const std::string sleep = timesBlocked(session->process());
        return sleep != sleepsBefore && session->isWaitingForMore() &&
               sleep == timesBlocked(session->process());
    }

    std::string sleepsBefore;
};

}  // namespace

TEST_P(hostile_gaps_test, ShortGapsLeaveTheKeyWhole) {
    startMenu();
    bool isWhole = false;
    for (int attempt = 0; attempt < mostAttempts && !isWhole; ++attempt) {
        moveTo(GetParam().from);
        typeWhileItWaits();
        isWhole = isTakenForOneKey();
    }
    EXPECT_TRUE(isWhole);
}

// What is left of the key is warned of, and nothing of it is taken for a part of the next one.
TEST_P(hostile_gaps_test, LongGapsTearTheKeyApart) {
    startMenu();
    milliseconds wait(mostAttempts * 1000);
    for (int attempt = 0; attempt < mostAttempts && wait > milliseconds(120); ++attempt) {
        moveTo(GetParam().from);
        wait = std::min(wait, typeAfterTheWait());
        EXPECT_FALSE(isTakenForOneKey());
    }
    EXPECT_GE(wait, milliseconds(50));
    EXPECT_LE(wait, milliseconds(120));
    moveTo("1");
    session->press("\x1b[B");
    awaitMenu("2");
}

INSTANTIATE_TEST_SUITE_P(Arrow, hostile_gaps_test, testing::ValuesIn(typings),
                         [](const auto& typing) { return typing.param.name; });
