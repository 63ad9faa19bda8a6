#include "support/blocked_signals.hpp"

#include <gtest/gtest.h>

TEST(BlockedSignals, ArePendingUntilItEnds) {
    static int taken = 0;
    std::signal(SIGUSR1, [](int) { ++taken; });
    std::signal(SIGUSR2, [](int) { ++taken; });
    {
        const blocked_signals blocked{SIGUSR1};
        raise(SIGUSR1);
        EXPECT_EQ(0, taken);
        raise(SIGUSR2);
        EXPECT_EQ(1, taken);
    }
    EXPECT_EQ(2, taken);
}
