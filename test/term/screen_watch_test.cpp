#include "term/screen_watch.hpp"

#include <gtest/gtest.h>

#include <csignal>

class screen_watch_test : public testing::TestWithParam<int> {};

TEST_P(screen_watch_test, NoticesTheSignalOnce) {
    const screen_watch watch;
    EXPECT_FALSE(screen_watch::hasChanged());
    raise(GetParam());
    EXPECT_TRUE(screen_watch::hasChanged());
    EXPECT_FALSE(screen_watch::hasChanged());
}

TEST_P(screen_watch_test, NoticesNothingOnceItHasEnded) {
    {
        const screen_watch watch;
        raise(GetParam());
    }
    const screen_watch next;
    EXPECT_FALSE(screen_watch::hasChanged());
}

TEST_P(screen_watch_test, LeavesTheDefaultActionBehind) {
    { const screen_watch watch; }
    struct sigaction action {};
    sigaction(GetParam(), nullptr, &action);
    EXPECT_EQ(SIG_DFL, action.sa_handler);
}

INSTANTIATE_TEST_SUITE_P(Signals, screen_watch_test, testing::Values(SIGWINCH, SIGCONT));
