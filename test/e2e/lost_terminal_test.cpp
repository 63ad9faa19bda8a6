#include <csignal>
#include <fstream>

#include "harness/process_state.hpp"
#include "harness/tool_test.hpp"

namespace {

/// The terminal goes away, and whoever leads its session keeps the news from the program.
class lost_terminal_test : public tool_test {
protected:
    lost_terminal_test() {
        const std::string statusFile = (package.root() / "status").string();
        program.arguments = {"sh", "-c", "trap '' HUP; \"$0\"; echo $? >\"$1\"", program.path,
                             statusFile};
        program.path = "/bin/sh";
    }

    void startMenuInSession() {
        start();
        session->followChild();
        awaitMenu();
    }

    /// @return exit status of the program, or 128 and the signal's number
    int awaitStatus() {
        int status = -1;
        session->await(
            [&] {
                std::ifstream file(package.root() / "status");
                return !(file >> status).fail();
            },
            "the end of the program");
        return status;
    }
};

}  // namespace

TEST_F(lost_terminal_test, EndsTheMenuAsAHangUpDoes) {
    startMenuInSession();
    session->hangUp();
    EXPECT_EQ(128 + SIGHUP, awaitStatus());
}

TEST_F(lost_terminal_test, EndsAWaitForEnterAsAHangUpDoes) {
    startMenuInSession();
    session->press("x");
    awaitEnterPrompt();
    session->hangUp();
    EXPECT_EQ(128 + SIGHUP, awaitStatus());
}

// It waits for ENTER without any menu then.
TEST_F(lost_terminal_test, EndsARefusalToStartAsWell) {
    package.remove("fw.bin");
    start();
    session->followChild();
    awaitEnterPrompt();
    session->hangUp();
    EXPECT_EQ(128 + SIGHUP, awaitStatus());
}

TEST_F(lost_terminal_test, LetsAFlashComeToItsEndFirst) {
    startMenuInSession();
    package.hold("varnflash");
    choose(2);
    session->awaitScreen("at work");
    session->hangUp();
    EXPECT_TRUE(isAlive(session->process()));
    EXPECT_FALSE(package.runs().back().ended);
    package.letGo();
    EXPECT_EQ(128 + SIGHUP, awaitStatus());
    EXPECT_TRUE(package.runs().back().ended);
}
