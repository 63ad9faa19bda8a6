#include <csignal>
#include <fstream>
#include <ostream>

#include "harness/process_state.hpp"
#include "harness/tool_test.hpp"

namespace {

struct wait_row_t {
    const char* name;
    std::vector<std::string> keys;
    const char* text;  ///< what is on the screen by then
};

void PrintTo(const wait_row_t& wait, std::ostream* out) { *out << wait.name; }

/// The terminal goes away, and whoever leads its session keeps the news from the program.
class lost_terminal_test : public tool_test {
protected:
    lost_terminal_test() {
        package.remove("programs/less");
        package.let("more", "print read");
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

class lost_terminal_wait_test : public lost_terminal_test,
                                public testing::WithParamInterface<wait_row_t> {};

}  // namespace

TEST_P(lost_terminal_wait_test, EndsTheProgramAsAHangUpDoes) {
    startMenuInSession();
    package.let("varnflash", "print written");
    for (const std::string& key : GetParam().keys) {
        session->press(key);
    }
    session->awaitScreen(GetParam().text);
    session->awaitKeyWait();
    session->hangUp();
    EXPECT_EQ(128 + SIGHUP, awaitStatus());
}

INSTANTIATE_TEST_SUITE_P(
    At, lost_terminal_wait_test,
    testing::Values(wait_row_t{"Menu", {}, ">"}, wait_row_t{"Warning", {"x"}, "Press ENTER"},
                    wait_row_t{"FlashWait", {"1", "\r"}, "written"},
                    wait_row_t{"PagerWait", {"5", "\r"}, "Press ENTER to close"}),
    [](const auto& row) { return row.param.name; });

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
