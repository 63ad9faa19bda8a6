#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <thread>

#include "harness/test_surroundings.hpp"
#include "support/support.hpp"

namespace {

constexpr const char* failure = "Command cannot be executed properly";

class runner_test : public testing::Test {
protected:
    int run(const std::string& command, bool showOutput = true) {
        return support().runCommand(command, showOutput);
    }

    std::string failureOf(const std::string& command) {
        return thrown<std::runtime_error>([&] { run(command); });
    }

    package_folder package;
    inside_package inside{package};
};

/// "cat " and an argument that make a command of this length.
std::string commandOf(std::size_t length) { return "cat " + std::string(length - 4, 'x'); }

}  // namespace

TEST_F(runner_test, ReturnsTheExitStatus) {
    EXPECT_EQ(0, run("cat"));
    package.let("cat", "exit 3");
    EXPECT_EQ(3, run("cat"));
    package.let("cat", "exit 255");
    EXPECT_EQ(255, run("cat"));
}

TEST_F(runner_test, FailsWhenASignalEndsTheChild) {
    package.let("cat", "kill 9");
    EXPECT_EQ(failure, failureOf("cat"));
}

TEST_F(runner_test, FailsWhenTheProgramCannotBeStarted) {
    EXPECT_EQ(failure, failureOf("no-such-program"));
    package.write("tool/plain", "no program\n");
    EXPECT_EQ(failure, failureOf("./plain"));
}

TEST_F(runner_test, RunsACommandOf254CharactersAndNoLongerOne) {
    EXPECT_EQ(0, run(commandOf(254)));
    EXPECT_EQ(failure, failureOf(commandOf(255)));
    EXPECT_EQ(failure, failureOf(""));
    EXPECT_EQ(failure, failureOf("   "));
    EXPECT_EQ(1U, package.runs().size());
}

TEST_F(runner_test, SplitsTheCommandAtBlanks) {
    run("less  -l  a\tb ");
    EXPECT_EQ((std::vector<std::string>{"less", "-l", "a\tb"}), package.runs().at(0).arguments);
}

TEST_F(runner_test, GivesTheChildFourVariables) {
    setenv("HOME", "/nowhere", 1);
    setenv("LANG", "de_DE.UTF-8", 1);
    run("cat");
    const std::vector<std::string> expected{"PATH=" + package.programs().string(), "TERM=xterm",
                                            "PWD=" + package.tool().string(), "LANG=en_US.UTF-8"};
    EXPECT_EQ(expected, package.runs().at(0).environment);
}

// What the environment was when the object was made is what every child gets.
TEST_F(runner_test, KeepsTheEnvironmentOfItsConstruction) {
    support services;
    setenv("TERM", "changed", 1);
    std::filesystem::current_path("/");
    services.runCommand("cat", true);
    const auto environment = package.runs().at(0).environment;
    EXPECT_EQ("TERM=xterm", environment.at(1));
    EXPECT_EQ("PWD=" + package.tool().string(), environment.at(2));
}

TEST_F(runner_test, SharesItsStreamsWhenOutputIsShown) {
    package.let("cat", "print seen");
    captured_output output;
    run("cat");
    EXPECT_EQ("seen\n", output.text());
}

// The null device is opened for reading on purpose: the child's writes fail.
TEST_F(runner_test, RefusesTheChildsWritesWhenOutputIsNotShown) {
    package.let("cat", "show");
    captured_output output;
    EXPECT_EQ(1, run("cat ../readme.txt", false));
    EXPECT_EQ("", output.text());
    const auto descriptors = package.runs().at(0).descriptors;
    EXPECT_EQ("r /dev/null", descriptors.at(1));
    EXPECT_EQ("r /dev/null", descriptors.at(2));
    EXPECT_EQ(0, run("cat ../readme.txt", true));
}

TEST_F(runner_test, PrintsWhatCameBeforeTheChildFirst) {
    package.let("cat", "print second");
    captured_output output;
    std::fputs("first\n", stdout);
    run("cat");
    EXPECT_EQ("first\nsecond\n", output.text());
}

// A child that is stopped has not ended.
TEST_F(runner_test, GoesOnWaitingForAStoppedChild) {
    package.let("cat", "kill 19\nexit 4");
    std::thread waker([] {
        for (int stopped = 0; stopped == 0;) {
            siginfo_t info{};
            if (waitid(P_ALL, 0, &info, WSTOPPED | WNOWAIT) == 0 && info.si_pid != 0) {
                stopped = kill(info.si_pid, SIGCONT) == 0 ? 1 : 0;
            }
        }
    });
    EXPECT_EQ(4, run("cat"));
    waker.join();
}

TEST_F(runner_test, FailsWhenTheChildCannotBeWaitedFor) {
    std::signal(SIGCHLD, SIG_IGN);  // the system then forgets children by itself
    EXPECT_EQ(failure, failureOf("cat"));
    std::signal(SIGCHLD, SIG_DFL);
}

TEST_F(runner_test, ClearsTheScreenThroughTheProgram) {
    package.let("clear", "print cleared\nexit 2");
    captured_output output;
    EXPECT_EQ(2, support().clearScreen());
    EXPECT_EQ("cleared\n", output.text());
}

TEST_F(runner_test, FindsProgramsOnThePathOnly) {
    EXPECT_TRUE(support().programExists("less"));
    EXPECT_FALSE(support().programExists("no-such-program"));
    EXPECT_EQ("which less", package.commandLines().at(0));
    EXPECT_EQ("r /dev/null", package.runs().at(0).descriptors.at(1));
}

// A shell script that cannot write its answer says "no": it is asked again with a null device
// that takes the answer.
TEST_F(runner_test, FindsProgramsThroughAWhichThatMustWrite) {
    package.let("which", "look strictly");
    captured_output output;
    EXPECT_TRUE(support().programExists("less"));
    EXPECT_FALSE(support().programExists("no-such-program"));
    EXPECT_EQ("", output.text());
    EXPECT_EQ("w /dev/null", package.runs().at(1).descriptors.at(1));
}

TEST_F(runner_test, PassesOnTheRunnersFailureWhenLookingForAProgram) {
    EXPECT_EQ(failure,
              thrown<std::runtime_error>([] { support().programExists(std::string(249, 'x')); }));
    EXPECT_EQ(0U, package.runs().size());
    package.remove("programs/which");
    EXPECT_EQ(failure, thrown<std::runtime_error>([] { support().programExists("less"); }));
}
