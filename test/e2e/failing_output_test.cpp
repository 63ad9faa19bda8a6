#include "harness/tool_test.hpp"

namespace {

/// Standard output takes nothing, as on a full disk; the keyboard is as usual.
class failing_output_test : public tool_test {
protected:
    void SetUp() override { startWith(">/dev/full"); }
};

}  // namespace

TEST_F(failing_output_test, LeavesExitAsAWayOut) {
    session->press("x");
    session->press("\r");
    session->press(mainScreen().key(main_menu::exit));
    session->press("\r");
    EXPECT_EQ(0, awaitEnd());
    EXPECT_TRUE(session->terminal().isCooked());
}

// By then more has been drawn than the buffer holds.
TEST_F(failing_output_test, TakesAnyNumberOfKeys) {
    constexpr int moreThanTheBufferHolds = 300;
    for (int key = 0; key < moreThanTheBufferHolds; ++key) {
        session->press("\x1b[B");
    }
    session->press("\r");
    EXPECT_EQ(0, awaitEnd());
}
