#include "app/process_setup.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

#include "harness/package_folder.hpp"
#include "harness/terminal_session.hpp"

// In a folder without devices the image would take the number all the same.
TEST(ProcessSetup, KeepsTheNumberOfAClosedDescriptorWithoutANullDevice) {
    const package_folder folder;
    terminal_session session([&folder] {
        if (chroot(folder.root().c_str()) != 0 || chdir("/") != 0) {
            return std::string("no other root folder");
        }
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
        setUpProcess();
        const int image = open("/fw.bin", O_RDONLY);
        return std::string(image > STDERR_FILENO ? "kept" : "taken");
    });
    EXPECT_EQ("kept", session.result());
}

TEST(ProcessSetup, RaisesTheDescriptorLimit) {
    terminal_session session([] {
        rlimit limit{256, 512};
        setrlimit(RLIMIT_NOFILE, &limit);
        setUpProcess();
        getrlimit(RLIMIT_NOFILE, &limit);
        return std::to_string(limit.rlim_cur) + " " + std::to_string(limit.rlim_max);
    });
    EXPECT_EQ("512 512", session.result());
}

TEST(ProcessSetup, AsksForAsManyDescriptorsAsItNeeds) {
    EXPECT_EQ(4096U, descriptorLimit({1024, 4096}));
    EXPECT_EQ(65'536U, descriptorLimit({1024, 1'048'576}));
    EXPECT_EQ(65'536U, descriptorLimit({1024, RLIM_INFINITY}));
    EXPECT_EQ(100'000U, descriptorLimit({100'000, 1'048'576}));
}

TEST(ProcessSetup, UnblocksSignalsAndWaitsForChildren) {
    terminal_session session([] {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_SETMASK, &all, nullptr);
        std::signal(SIGCHLD, SIG_IGN);
        setUpProcess();
        sigprocmask(SIG_SETMASK, nullptr, &all);
        const bool blocked = sigismember(&all, SIGHUP) == 1;
        const bool ignored = std::signal(SIGCHLD, SIG_DFL) == SIG_IGN;
        return std::string(blocked || ignored ? "as before" : "reset");
    });
    EXPECT_EQ("reset", session.result());
}

// Lines that are not flushed stay together until they are.
TEST(ProcessSetup, KeepsOutputTogetherUntilItIsFlushed) {
    terminal_session session([] {
        setUpProcess();
        std::fputs("first\nsecond\n", stdout);
        while (getchar() != '\n') {
        }
        std::fflush(stdout);
        return std::string();
    });
    session.awaitKeyWait();
    EXPECT_EQ("", session.output());
    session.type("\n");
    session.awaitEnd();
    EXPECT_TRUE(session.screen().contains("second"));
}

// What is opened next is not to take the place of a standard descriptor.
TEST(ProcessSetup, OpensTheNullDeviceWhereADescriptorIsClosed) {
    const auto mode = [](int descriptor) {
        const int flags = fcntl(descriptor, F_GETFL) & O_ACCMODE;
        return std::string(flags == O_RDONLY ? "r" : flags == O_WRONLY ? "w" : "-");
    };
    for (int closed = 0; closed < 8; ++closed) {
        terminal_session session([&] {
            std::string modes;
            for (int descriptor = 0; descriptor < 3; ++descriptor) {
                modes += (closed >> descriptor & 1) == 0 ? "-" : descriptor == 0 ? "r" : "w";
                if ((closed >> descriptor & 1) != 0) {
                    close(descriptor);
                }
            }
            setUpProcess();
            return modes == mode(0) + mode(1) + mode(2) ? modes + " as expected" : modes;
        });
        EXPECT_TRUE(session.result().ends_with("as expected")) << closed;
    }
}
