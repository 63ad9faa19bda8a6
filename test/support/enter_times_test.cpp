#include "support/enter_times.hpp"

#include <gtest/gtest.h>

namespace {

using std::chrono::milliseconds;

milliseconds passed{};

class enter_times_test : public testing::Test {
protected:
    enter_times_test() {
        enter_times::now = [] { return enter_times::clock_t::time_point(passed); };
    }
    ~enter_times_test() override { enter_times::now = enter_times::clock_t::now; }

    /// @return whether an ENTER is a repeat that comes so long after the last one
    bool isRepeatedAfter(milliseconds time) {
        passed += time;
        times.add();
        return times.isRepeated();
    }

    enter_times times;
};

}  // namespace

TEST_F(enter_times_test, TakesTheFirstOneForAPress) {
    EXPECT_FALSE(times.isRepeated());
    EXPECT_FALSE(isRepeatedAfter(milliseconds(0)));
}

TEST_F(enter_times_test, TakesWhatComesWithinASecondForARepeat) {
    isRepeatedAfter(milliseconds(0));
    EXPECT_TRUE(isRepeatedAfter(milliseconds(0)));
    EXPECT_TRUE(isRepeatedAfter(milliseconds(999)));
    EXPECT_TRUE(isRepeatedAfter(milliseconds(999)));  // of the last one, a repeat itself
    EXPECT_FALSE(isRepeatedAfter(milliseconds(1000)));
    EXPECT_TRUE(isRepeatedAfter(milliseconds(250)));
}

TEST_F(enter_times_test, TakesTheNextOneAfterAnotherKeyForAPress) {
    isRepeatedAfter(milliseconds(0));
    isRepeatedAfter(milliseconds(1));
    times.forget();
    EXPECT_FALSE(times.isRepeated());
    EXPECT_FALSE(isRepeatedAfter(milliseconds(1)));
}

TEST_F(enter_times_test, GoesByTheMonotonicClock) {
    EXPECT_TRUE(bool{enter_times::clock_t::is_steady});
    enter_times::now = enter_times::clock_t::now;
    const auto before = enter_times::clock_t::now();
    EXPECT_LE(before, enter_times::now());
}
