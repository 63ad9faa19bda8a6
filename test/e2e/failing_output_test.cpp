#include <chrono>

#include "harness/tool_test.hpp"

namespace {

/// Standard output takes nothing, as on a full disk; the keyboard is as usual.
class failing_output_test : public tool_test {
protected:
    void startWithoutOutput(const std::string& arguments = "") {
        program.arguments = {"sh", "-c", "exec \"$0\" " + arguments + " >/dev/full", program.path};
        program.path = "/bin/sh";
        start();
    }
};

}  // namespace

TEST_F(failing_output_test, LeavesCtrlCAsAWayOut) {
    startWithoutOutput();
    session->press("\x03");
    EXPECT_EQ(0, awaitEnd());
    EXPECT_TRUE(session->terminal().isCooked());
}

TEST_F(failing_output_test, LeavesExitAsAWayOut) {
    startWithoutOutput();
    session->press("x");
    session->press("\r");
    session->press("8");
    session->press("\r");
    EXPECT_EQ(0, awaitEnd());
    EXPECT_TRUE(session->terminal().isCooked());
}

// By then more has been drawn than the buffer holds.
TEST_F(failing_output_test, TakesAnyNumberOfKeys) {
    constexpr int moreThanTheBufferHolds = 300;
    startWithoutOutput();
    for (int key = 0; key < moreThanTheBufferHolds; ++key) {
        session->press("\x1b[B");
    }
    session->press("\r");
    EXPECT_EQ(0, awaitEnd());
}

TEST_F(failing_output_test, DoesNotKeepTheWalkFromItsEnd) {
    const auto start = std::chrono::steady_clock::now();
    startWithoutOutput("--eval");
    EXPECT_EQ(0, awaitEnd());
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(7 * 2));
    EXPECT_EQ(1U + 7U * 2U, package.runs().size());  // the question, and which and cat seven times
}
