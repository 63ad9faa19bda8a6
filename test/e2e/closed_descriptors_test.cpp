#include <unistd.h>

#include <algorithm>
#include <array>

#include "harness/tool_test.hpp"

namespace {

/// Which of the standard descriptors whoever starts the program has closed, as bits: 1 << 0 stands
/// for standard input.
class closed_descriptors_test : public tool_test, public testing::WithParamInterface<int> {
protected:
    static bool isClosed(int descriptor) { return (GetParam() >> descriptor & 1) != 0; }

    void startWithoutThem() {
        std::string command = "exec \"$0\"";
        for (int descriptor = 0; descriptor <= STDERR_FILENO; ++descriptor) {
            command += isClosed(descriptor) ? " " + std::to_string(descriptor) + ">&-" : "";
        }
        program.arguments = {"sh", "-c", command, program.path};
        program.path = "/bin/sh";
        start();
        session->awaitKeyWait();
    }

    /// A program that opens a file is not to be given a standard descriptor for it.
    static void expectAllOpen(const run_record_t& run) {
        const std::array modes{"r", "w", "w"};
        for (int descriptor = 0; descriptor <= STDERR_FILENO; ++descriptor) {
            const auto open = run.descriptors.find(descriptor);
            ASSERT_NE(run.descriptors.end(), open) << run.name << " lacks " << descriptor;
            const std::string null = std::string(modes.at(descriptor)) + " /dev/null";
            if (isClosed(descriptor)) {
                EXPECT_EQ(null, open->second) << run.name << " " << descriptor;
            } else {
                EXPECT_EQ(0U, open->second.find("rw /dev/pts/")) << open->second;
            }
        }
    }

    /// Carries an entry out, whose drawing may not be seen, and waits for the menu to come back.
    void carryOut(const std::string& number, const std::string& expected) {
        session->press(number);
        session->press("\r");
        session->await(
            [&] {
                return !package.runs().empty() && package.runs().back().ended &&
                       package.runs().back().name == expected;
            },
            expected);
        expectAllOpen(package.runs().back());
        session->awaitKeyWait();
    }
};

std::string closedNames(const testing::TestParamInfo<int>& closed) {
    std::string name = closed.param == 0 ? "None" : "";
    for (int descriptor = 0; descriptor <= STDERR_FILENO; ++descriptor) {
        name += (closed.param >> descriptor & 1) != 0 ? "Number" + std::to_string(descriptor) : "";
    }
    return name;
}

class closed_keyboard_test : public closed_descriptors_test {};

}  // namespace

TEST_P(closed_descriptors_test, AreOpenInTheProgramsThatAreRun) {
    startWithoutThem();
    expectAllOpen(package.runs().back());
    carryOut("1", "varnflash");
    session->press("\r");
    carryOut("5", "less");
}

INSTANTIATE_TEST_SUITE_P(Without, closed_descriptors_test, testing::Values(0, 2, 4, 6),
                         closedNames);

TEST_P(closed_keyboard_test, IsNoTerminal) {
    startWithoutThem();
    if (!isClosed(STDOUT_FILENO)) {
        EXPECT_EQ(
            "[CRIT] Invalid argument error: Cannot initialize terminal\n"
            "Press ENTER to continue...\n",
            session->screen().text());
    }
    EXPECT_TRUE(package.runs().empty());
}

INSTANTIATE_TEST_SUITE_P(Without, closed_keyboard_test, testing::Values(1, 3, 5, 7), closedNames);
