#include <unistd.h>

#include <array>

#include "harness/tool_test.hpp"

namespace {

/// Whoever starts the program has closed some of the standard descriptors.
class closed_descriptors_test : public tool_test {
protected:
    /// Carries an entry out, whose drawing may not be seen, and waits for the menu to come back.
    /// @return what the program had open
    std::map<int, std::string> carryOut(const std::string& number, const std::string& expected) {
        session->press(number);
        session->press("\r");
        session->await(
            [&] { return package.runs().back().ended && package.runs().back().name == expected; },
            expected);
        session->awaitKeyWait();
        return package.runs().back().descriptors;
    }
};

}  // namespace

// A program that opens a file is not to be given a standard descriptor for it.
TEST_F(closed_descriptors_test, OfOutputAreOpenInTheProgramsThatAreRun) {
    startWith(">&- 2>&-");
    session->awaitKeyWait();
    const auto expectOpen = [](const std::map<int, std::string>& open) {
        ASSERT_LE(3U, open.size());
        EXPECT_TRUE(open.at(STDIN_FILENO).starts_with("rw /dev/pts/"));
        EXPECT_EQ("w /dev/null", open.at(STDOUT_FILENO));
        EXPECT_EQ("w /dev/null", open.at(STDERR_FILENO));
    };
    expectOpen(package.runs().back().descriptors);
    const auto whileFlashing = carryOut("1", "varnflash");
    expectOpen(whileFlashing);
    EXPECT_EQ("rw /run/varnmenu.lock", whileFlashing.rbegin()->second);
    EXPECT_EQ(4U, whileFlashing.size());
    session->press("\r");
    const auto whileReading = carryOut(mainScreen().key(main_menu::readme), "less");
    expectOpen(whileReading);
    EXPECT_EQ(3U, whileReading.size());
}

TEST_F(closed_descriptors_test, OfTheKeyboardIsNoTerminal) {
    for (const char* others : {"", " 2>&-", " >&-", " >&- 2>&-"}) {
        startWith(std::string("<&-") + others);
        session->awaitKeyWait();
        if (std::string_view(others).find(" >") == std::string_view::npos) {
            EXPECT_EQ(
                "[CRIT] Invalid argument error: Cannot initialize terminal\n"
                "Press ENTER to continue...\n",
                session->screen().text());
        }
        EXPECT_TRUE(package.runs().empty());
    }
}
