#include "support/input_watch.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <string>
#include <thread>

#include "harness/process_state.hpp"
#include "support/blocked_signals.hpp"

namespace {

class input_watch_test : public testing::Test {
protected:
    input_watch_test() { EXPECT_EQ(0, pipe(ends.data())); }
    ~input_watch_test() override {
        close(ends[0]);
        close(ends[1]);
    }

    std::array<int, 2> ends{};
};

/// Interrupts the thread that made it again and again.
class signal_storm {
public:
    signal_storm() {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGUSR1, &action, nullptr);
        sender = std::thread([this, target = pthread_self()] {
            while (!done) {
                pthread_kill(target, SIGUSR1);
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
        });
    }
    ~signal_storm() {
        done = true;
        sender.join();
    }

    signal_storm(const signal_storm&) = delete;
    signal_storm& operator=(const signal_storm&) = delete;

private:
    std::atomic<bool> done = false;
    std::thread sender;
};

}  // namespace

TEST_F(input_watch_test, SeesWhatCanBeRead) {
    const input_watch watch(ends[0]);
    EXPECT_FALSE(watch.waitReadable(0));
    ASSERT_EQ(1, write(ends[1], "x", 1));
    EXPECT_TRUE(watch.waitReadable(input_watch::noTimeLimit));
}

TEST_F(input_watch_test, AnswersNoForWhatCannotBeWatched) {
    std::FILE* file = std::tmpfile();
    EXPECT_FALSE(input_watch(fileno(file)).waitReadable(input_watch::noTimeLimit));
    std::fclose(file);
    EXPECT_FALSE(input_watch(-1).waitReadable(input_watch::noTimeLimit));
}

TEST_F(input_watch_test, ClosesItsDescriptorUnlessToldOtherwise) {
    const std::ptrdiff_t before = openDescriptors();
    { const input_watch watch(ends[0]); }
    EXPECT_EQ(before, openDescriptors());
    {
        input_watch watch(ends[0]);
        watch.leaveOpen();
        EXPECT_FALSE(watch.waitReadable(0));
    }
    EXPECT_EQ(before + 1, openDescriptors());
}

// A child program is not to inherit hundreds of them.
TEST_F(input_watch_test, IsClosedInChildPrograms) {
    const int lowest = dup(ends[0]);
    close(lowest);
    const input_watch watch(ends[0]);
    EXPECT_EQ(FD_CLOEXEC, fcntl(lowest, F_GETFD));
}

// Left open as it is, it would be woken at every key from then on, like all others of its kind.
TEST_F(input_watch_test, WatchesNothingOnceLeftOpen) {
    const int lowest = dup(ends[0]);
    close(lowest);
    input_watch watch(ends[0]);
    watch.leaveOpen();
    ASSERT_EQ(1, write(ends[1], "x", 1));
    epoll_event event{};
    EXPECT_EQ(0, epoll_wait(lowest, &event, 1, 0));
}

// Nine interruptions are survived, the tenth ends the wait.
TEST_F(input_watch_test, GivesUpAtTheTenthInterruption) {
    const signal_storm storm;
    int waits = 0;
    EXPECT_FALSE(input_watch(ends[0]).waitReadable(input_watch::noTimeLimit, [&waits] {
        ++waits;
        return false;
    }));
    EXPECT_EQ(1 + 10, waits);  // once before the first wait
}

// What somebody deals with, as a new size of the window, does not wear the wait out.
TEST_F(input_watch_test, DoesNotCountInterruptionsThatAreDealtWith) {
    const signal_storm storm;
    int calls = 0;
    EXPECT_TRUE(input_watch(ends[0]).waitReadable(input_watch::noTimeLimit, [&] {
        ++calls;
        if (calls == 60) {
            EXPECT_EQ(1, write(ends[1], "x", 1));
        }
        return true;
    }));
    EXPECT_GE(calls, 60);
}

// It would be waited for in vain if it came in between the last look and the wait.
TEST_F(input_watch_test, LetsInWhatTheCallerHasBlockedDuringTheWaitOnly) {
    static volatile std::sig_atomic_t seen = 0;
    std::signal(SIGUSR2, [](int) { seen = seen + 1; });
    const blocked_signals blocked{SIGUSR2};
    std::string seenAtEachLook;
    EXPECT_TRUE(input_watch(ends[0]).waitReadable(input_watch::noTimeLimit, [&] {
        seenAtEachLook += std::to_string(seen);
        if (seen == 0) {
            raise(SIGUSR2);
        } else {
            EXPECT_EQ(1, write(ends[1], "x", 1));
        }
        return false;
    }));
    raise(SIGUSR2);
    EXPECT_EQ("01", seenAtEachLook);
    EXPECT_EQ(1, seen);  // the second one is blocked again
    std::signal(SIGUSR2, SIG_IGN);
}
