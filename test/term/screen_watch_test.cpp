#include "term/screen_watch.hpp"

#include <gtest/gtest.h>
#include <poll.h>

#include <cerrno>
#include <csignal>

namespace {

class screen_watch_test : public testing::TestWithParam<int> {};

/// @return true when a signal comes in as soon as it may
bool isInterrupted() {
    sigset_t none;
    sigemptyset(&none);
    constexpr timespec noTime{};
    return ppoll(nullptr, 0, &noTime, &none) == -1 && errno == EINTR;
}

}  // namespace

TEST_P(screen_watch_test, NoticesTheSignalOnce) {
    const screen_watch watch;
    EXPECT_FALSE(screen_watch::hasChanged());
    raise(GetParam());
    EXPECT_TRUE(isInterrupted());
    EXPECT_TRUE(screen_watch::hasChanged());
    EXPECT_FALSE(screen_watch::hasChanged());
    EXPECT_FALSE(isInterrupted());
}

// Or it would be lost when it comes in right after the last look.
TEST_P(screen_watch_test, LeavesTheSignalToTheWait) {
    const screen_watch watch;
    raise(GetParam());
    EXPECT_FALSE(screen_watch::hasChanged());
    EXPECT_TRUE(isInterrupted());
}

TEST_P(screen_watch_test, LeavesTheSignalAsItWas) {
    {
        const screen_watch watch;
        raise(GetParam());
    }
    EXPECT_FALSE(screen_watch::hasChanged());
    sigset_t blocked;
    sigprocmask(SIG_SETMASK, nullptr, &blocked);
    EXPECT_EQ(0, sigismember(&blocked, GetParam()));
    struct sigaction action {};
    sigaction(GetParam(), nullptr, &action);
    EXPECT_EQ(SIG_DFL, action.sa_handler);
}

INSTANTIATE_TEST_SUITE_P(Signals, screen_watch_test, testing::Values(SIGWINCH, SIGCONT));
