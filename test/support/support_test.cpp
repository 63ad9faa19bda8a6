#include "support/support.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>

#include "harness/terminal_session.hpp"
#include "harness/test_surroundings.hpp"

namespace {

constexpr const char* environmentFailure = "Environment variables cannot be initialized";

class support_test : public testing::Test {
protected:
    static std::string constructionFailure() {
        return thrown<std::invalid_argument>([] { support(); });
    }

    package_folder package;
    inside_package inside{package};
};

std::chrono::milliseconds durationOf(int unit, int amount) {
    const auto start = std::chrono::steady_clock::now();
    support::delay(unit, amount);
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 start);
}

/// Has an alarm cut the delay short.
std::string interruptedDelay(int unit, int amount) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, nullptr);
    ualarm(50'000, 0);
    return thrown<std::runtime_error>([&] { support::delay(unit, amount); });
}

long processorMilliseconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000 +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000;
}

}  // namespace

TEST_F(support_test, NeedsPathTerminalTypeAndWorkingDirectory) {
    for (const char* name : {"PATH", "TERM"}) {
        const std::string value = std::getenv(name);
        unsetenv(name);
        EXPECT_EQ(environmentFailure, constructionFailure());
        setenv(name, value.c_str(), 1);
    }
    package.remove("tool");
    EXPECT_EQ(environmentFailure, constructionFailure());
}

TEST_F(support_test, TakesAnEnvironmentOf4096Characters) {
    const std::string rest =
        "PATH=;TERM=xterm;PWD=" + package.tool().string() + ";LANG=en_US.UTF-8";
    const std::string longest(4096 - rest.size(), 'p');
    setenv("PATH", longest.c_str(), 1);
    EXPECT_EQ("nothing thrown", constructionFailure());
    setenv("PATH", (longest + "p").c_str(), 1);
    EXPECT_EQ(environmentFailure, constructionFailure());
}

TEST_F(support_test, TellsWhatExists) {
    EXPECT_TRUE(support::fileExists("../fw.bin"));
    EXPECT_TRUE(support::fileExists(".."));
    EXPECT_FALSE(support::fileExists("../missing"));
}

TEST_F(support_test, FileNameIsTheLastComponent) {
    EXPECT_EQ("varnmenu", support().fileName("/opt/pkg/varnmenu"));
    EXPECT_EQ("varnmenu", support().fileName("varnmenu"));
    EXPECT_EQ("", support().fileName("dir/"));
    EXPECT_EQ("", support().fileName(""));
}

TEST(SupportTexts, NewLinesAreAsManyAsAskedFor) {
    EXPECT_EQ("\n\n", support::newLines(2));
    EXPECT_EQ("", support::newLines(0));
    EXPECT_EQ("", support::newLines(-3));
}

TEST(SupportTexts, CleanUpsRemoveEveryOccurrence) {
    std::string text = "\"a\"\r\n\"b\r\"\n";
    support::removeQuotes(text);
    EXPECT_EQ("a\r\nb\r\n", text);
    support::removeLineEnds(text);
    EXPECT_EQ("ab", text);
    support::removeChar(text, 'a');
    EXPECT_EQ("b", text);
}

TEST(Delay, SleepsTheSecondsAskedFor) {
    const auto duration = durationOf(support::seconds, 2);
    EXPECT_GE(duration, std::chrono::milliseconds(2000));
    EXPECT_LT(duration, std::chrono::milliseconds(3000));
}

TEST(Delay, DropsWholeSecondsOfMilliseconds) {
    const auto duration = durationOf(support::milliseconds, 1500);
    EXPECT_GE(duration, std::chrono::milliseconds(500));
    EXPECT_LT(duration, std::chrono::milliseconds(1500));
}

TEST(Delay, ReturnsAtOnceWhereNothingIsToBeSlept) {
    EXPECT_LT(durationOf(0, 0), std::chrono::milliseconds(900));
    EXPECT_LT(durationOf(0, -5), std::chrono::milliseconds(900));
    EXPECT_LT(durationOf(7, 3), std::chrono::milliseconds(900));
}

TEST(Delay, FailsWhenASignalCutsItShort) {
    EXPECT_EQ("Cannot complete delay of seconds: 2", interruptedDelay(support::seconds, 2));
    EXPECT_EQ("Cannot complete delay of seconds: 500000",
              interruptedDelay(support::milliseconds, 500));
}

TEST_F(support_test, WaitsForEnterInTheRawMode) {
    terminal_session session([] {
        setRawMode();
        support().waitForEnter("message");
        return std::string("entered");
    });
    session.press("x");
    session.press("\r");
    EXPECT_EQ("entered", session.result());
    EXPECT_EQ("message\r\n", session.output());
}

// At end of file it goes on waiting, and leaves the processor to others.
TEST_F(support_test, WaitsAtEndOfFileWithoutSpinning) {
    terminal_session session([] {
        const typed_input nothing("");
        struct sigaction action {};
        static const auto before = processorMilliseconds();
        action.sa_handler = [](int) { std::_Exit(processorMilliseconds() - before < 10 ? 0 : 1); };
        sigaction(SIGALRM, &action, nullptr);
        alarm(3);
        support().waitForEnter("");
        return std::string("returned");
    });
    EXPECT_EQ("", session.result());
    EXPECT_EQ(0, session.awaitEnd());
}
