#include <chrono>
#include <ostream>
#include <thread>

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
    // On a busy machine a pause may become longer for the program than it was here, and two pieces
    // may come together: once out of so many attempts, the right result has to show.
    static constexpr int mostAttempts = 20;

    /// @return true when the pieces were taken for one key; ends at the menu in any case
    bool isTakenForOneKey(milliseconds gap) {
        moveTo(GetParam().from);
        session->press(GetParam().pieces.front());
        for (std::size_t next = 1; next < GetParam().pieces.size(); ++next) {
            std::this_thread::sleep_for(gap);
            session->type(GetParam().pieces[next]);
        }
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

    bool isEverTakenForOneKey(bool wanted, milliseconds gap) {
        for (int attempt = 0; attempt < mostAttempts; ++attempt) {
            if (isTakenForOneKey(gap) == wanted) {
                return wanted;
            }
        }
        return !wanted;
    }
};

}  // namespace

TEST_P(hostile_gaps_test, ShortGapsLeaveTheKeyWhole) {
    startMenu();
    for (const milliseconds gap : {milliseconds(0), milliseconds(40)}) {
        EXPECT_TRUE(isEverTakenForOneKey(true, gap)) << gap.count() << " ms";
    }
}

// What is left of the key is warned of, and nothing of it is taken for a part of the next one.
TEST_P(hostile_gaps_test, LongGapsTearTheKeyApart) {
    startMenu();
    EXPECT_FALSE(isEverTakenForOneKey(false, milliseconds(120)));
    moveTo("1");
    session->press("\x1b[B");
    awaitMenu("2");
}

INSTANTIATE_TEST_SUITE_P(Arrow, hostile_gaps_test, testing::ValuesIn(typings),
                         [](const auto& typing) { return typing.param.name; });
