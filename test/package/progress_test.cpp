#include "package/progress.hpp"

#include <gtest/gtest.h>

#include "harness/terminal_session.hpp"

namespace {

/// @return what a terminal shows of a step that is a quarter done after this interval
std::string shownAfter(std::chrono::milliseconds interval) {
    terminal_session session([interval] {
        progress shown("a\x1b", 200, interval);
        shown.add(50);
        return std::string("done");
    });
    EXPECT_EQ("done", session.result());
    return session.output();
}

}  // namespace

TEST(Progress, IsShownOnATerminalAndWipedOut) {
    EXPECT_EQ("\ra\\033: 25 %\r            \r", shownAfter(std::chrono::milliseconds(0)));
}

TEST(Progress, IsNotShownElsewhere) {
    testing::internal::CaptureStderr();
    {
        progress shown("a", 200, std::chrono::milliseconds(0));
        shown.add(50);
    }
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

TEST(Progress, IsNotShownOfAShortStep) { EXPECT_EQ("", shownAfter(std::chrono::hours(1))); }
