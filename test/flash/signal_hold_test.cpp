#include "flash/signal_hold.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>

namespace {

void (*actionOf(int signal))(int) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler;
}

bool isBlocked(int signal) {
    sigset_t mask;
    sigprocmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

int taken = 0;

}  // namespace

class signal_hold_test : public testing::TestWithParam<int> {
protected:
    signal_hold_test() {
        taken = 0;
        std::signal(GetParam(), [](int signal) { taken = signal; });
    }
    ~signal_hold_test() override { std::signal(GetParam(), SIG_DFL); }
};

TEST_P(signal_hold_test, IgnoresTheSignalUntilItEnds) {
    const auto before = actionOf(GetParam());
    {
        const signal_hold hold;
        EXPECT_EQ(SIG_IGN, actionOf(GetParam()));
    }
    EXPECT_EQ(before, actionOf(GetParam()));
    EXPECT_FALSE(isBlocked(GetParam()));
}

TEST_P(signal_hold_test, LetsAHeldSignalTakeEffectWhenItEnds) {
    {
        const signal_hold hold;
        kill(getpid(), GetParam());
        EXPECT_EQ(0, taken);
    }
    EXPECT_EQ(GetParam(), taken);
}

INSTANTIATE_TEST_SUITE_P(HangUpAndInterrupts, signal_hold_test,
                         testing::Values(SIGHUP, SIGINT, SIGQUIT),
                         [](const auto& signal) { return sigabbrev_np(signal.param); });

TEST(SignalHold, LeavesOtherSignalsAlone) {
    const signal_hold hold;
    EXPECT_EQ(SIG_DFL, actionOf(SIGTERM));
    EXPECT_FALSE(isBlocked(SIGTERM));
}
