#include "flash/flashtools.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

#include "flash/operation_lock.hpp"
#include "harness/test_surroundings.hpp"

namespace {

using pairs_t = std::vector<std::pair<int, int>>;
const pairs_t menuPairs{
    {1, op_inactive}, {2, op_force_1st}, {3, op_force_2nd}, {4, op_emergency}, {9, op_reboot}};

/// The image's name has a blank: nothing keeps its two words together.
class flashtools_test : public testing::Test {
protected:
    flashtools_test() {
        package.write("releasefile-information.txt",
                      "VARN_RELEASE=1\nSDR_RELEASE=2\nSYSTEM=SV\nIMAGE_NAME=fw 2.bin\n");
        package.write("fw 2.bin", "image");
    }

    /// Carries an operation out, ENTER being pressed afterwards.
    /// @return what is printed
    static std::string output(flashtools& tools, int menuItem) {
        const typed_input enter("\n");
        captured_output output;
        tools.runOperation(menuItem);
        return output.text();
    }

    static std::string failure(flashtools& tools, int menuItem) {
        return thrown<std::runtime_error>([&] { tools.runOperation(menuItem); });
    }

    package_folder package;
    inside_package inside{package};
};

}  // namespace

TEST_F(flashtools_test, NeedsTheCoreProgramAfterTheImage) {
    package.remove("tool/varnflash");
    const auto construct = [] { flashtools(false, menuPairs); };
    EXPECT_EQ("Flashtools core program not available", thrown<std::invalid_argument>(construct));
    package.remove("fw 2.bin");
    EXPECT_EQ("Firmware file not found: fw 2.bin", thrown<std::invalid_argument>(construct));
}

TEST_F(flashtools_test, RunsEveryOperationWithItsMessageAndArguments) {
    flashtools tools(false, menuPairs);
    EXPECT_EQ("\n\nStarting validation of inactive image, please wait...\n\n\n", output(tools, 1));
    EXPECT_EQ("\n\nPreparing forced flash of 1st image, please wait...\n\n\n", output(tools, 2));
    EXPECT_EQ("\n\nPreparing forced flash of 2nd image, please wait...\n\n\n", output(tools, 3));
    EXPECT_EQ("\n\nPreparing emergency flash, please wait...\n\n\n", output(tools, 4));
    EXPECT_EQ("\n\nVarn reboot pending, wait for boot to complete\n", output(tools, 9));
    EXPECT_EQ((std::vector<std::string>{"./varnflash", "../fw", "2.bin", "/i", "/logDebug"}),
              package.runs().front().arguments);
    const std::vector<std::string> expected{
        "./varnflash ../fw 2.bin /i /logDebug", "./varnflash ../fw 2.bin /f1 /logDebug",
        "./varnflash ../fw 2.bin /f2 /logDebug", "./varnflash ../fw 2.bin /emerg /logDebug",
        "./varnflash /wr"};
    EXPECT_EQ(expected, package.commandLines());
}

// The core program's own output tells the user; and the wait takes the ENTER.
TEST_F(flashtools_test, ShowsTheOutputAndDoesNotJudgeTheExitStatus) {
    package.let("varnflash", "print written\nexit 1");
    flashtools tools(false, menuPairs);
    const typed_input keys("ignored\n\nleft");
    captured_output output;
    tools.runOperation(9);
    EXPECT_EQ("\n\nVarn reboot pending, wait for boot to complete\nwritten\n", output.text());
    EXPECT_EQ('\n', getchar());
}

TEST_F(flashtools_test, RefusesMenuItemsWithoutOperation) {
    flashtools tools(false, {{1, op_inactive}, {7, 99}});
    EXPECT_EQ("Flashtools operation not supported", failure(tools, 0));
    EXPECT_EQ("Flashtools operation not supported", failure(tools, 5));
    EXPECT_EQ("Flashtools operation not defined", failure(tools, 7));
}

TEST_F(flashtools_test, KeepsTheFirstOperationOfAMenuItem) {
    flashtools tools(false, {{1, op_reboot}, {1, op_inactive}});
    output(tools, 1);
    EXPECT_EQ("./varnflash /wr", package.commandLines().at(0));
}

TEST_F(flashtools_test, PassesOnTheRunnersFailure) {
    std::filesystem::permissions(package.tool() / "varnflash", std::filesystem::perms(0644));
    flashtools tools(false, menuPairs);
    captured_output output;
    EXPECT_EQ("Command cannot be executed properly", failure(tools, 1));
}

TEST_F(flashtools_test, RefusesWhileAnotherOperationIsAtWork) {
    flashtools tools(false, menuPairs);
    const operation_lock another;
    captured_output output;
    EXPECT_EQ("Another flash or reboot is at work on this server", failure(tools, 1));
    EXPECT_EQ("", output.text());
    EXPECT_EQ(0U, package.runs().size());
    EXPECT_FALSE(tools.checkIspfr());  // a question only
    EXPECT_EQ(1U, package.runs().size());
}

// Another operation may be at work: none is started here.
TEST_F(flashtools_test, PausesInsteadOfFlashingInEvaluationMode) {
    flashtools tools(true, menuPairs);
    const operation_lock another;
    const typed_input keys("left");
    captured_output output;
    const auto start = std::chrono::steady_clock::now();
    tools.runOperation(2);
    const auto duration = std::chrono::steady_clock::now() - start;
    EXPECT_GE(duration, std::chrono::seconds(2));
    EXPECT_LT(duration, std::chrono::seconds(3));
    EXPECT_EQ("\n\nPreparing forced flash of 1st image, please wait...\n\n\n", output.text());
    EXPECT_EQ('l', getchar());
    EXPECT_EQ(0U, package.runs().size());
}

// A hang-up must not end a core program that is writing. Every other child is a usual one.
TEST_F(flashtools_test, RunsTheCoreProgramWithHangUpsIgnored) {
    flashtools tools(false, menuPairs);
    output(tools, 1);
    tools.checkIspfr();
    const auto runs = package.runs();
    EXPECT_EQ((std::set<int>{SIGHUP, SIGINT, SIGQUIT}), runs.at(0).ignoredSignals);
    EXPECT_EQ(std::set<int>{}, runs.at(1).ignoredSignals);
    EXPECT_EQ(std::set<int>{}, runs.at(1).blockedSignals);
}

TEST_F(flashtools_test, AsksWhetherTheEmergencyFlashIsToBeOffered) {
    for (const bool evaluate : {false, true}) {
        flashtools tools(evaluate, menuPairs);
        for (const int status : {0, 1, 54}) {
            package.let("varnflash", "exit " + std::to_string(status));
            EXPECT_FALSE(tools.checkIspfr()) << status;
        }
        package.let("varnflash", "exit 55");
        EXPECT_TRUE(tools.checkIspfr());
    }
    EXPECT_EQ("./varnflash /ispfr", package.commandLines().at(0));
}
