#include "flash/operation_lock.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "harness/test_surroundings.hpp"

namespace fs = std::filesystem;

namespace {

constexpr const char* anotherIsAtWork = "Another flash or reboot is at work on this server";

std::string refusal() {
    return thrown<std::runtime_error>([] { const operation_lock second; });
}

}  // namespace

TEST(OperationLock, RefusesASecondOneAsLongAsItLives) {
    {
        const operation_lock first;
        EXPECT_EQ(anotherIsAtWork, refusal());
        EXPECT_EQ(anotherIsAtWork, refusal());
    }
    EXPECT_EQ("nothing thrown", refusal());
}

// As a core program does that has left the menu, or something behind.
TEST(OperationLock, LastsAsLongAsAProgramThatHasInheritedIt) {
    std::array<int, 2> ends{};
    ASSERT_EQ(0, pipe(ends.data()));
    auto lock = std::make_unique<operation_lock>();
    const pid_t child = fork();
    if (child == 0) {
        close(ends[1]);
        char nothing = 0;
        _exit(static_cast<int>(read(ends[0], &nothing, 1)));  // until the other end is closed
    }
    close(ends[0]);
    lock.reset();
    EXPECT_EQ(anotherIsAtWork, refusal());
    close(ends[1]);
    waitpid(child, nullptr, 0);
    EXPECT_EQ("nothing thrown", refusal());
}

TEST(OperationLock, IsForItsOwnerAlone) {
    const operation_lock lock;
    EXPECT_EQ(fs::perms(0600), fs::status(operation_lock::path).permissions());
}

// Another file would be made, or locked.
TEST(OperationLock, FollowsNoLink) {
    const package_folder package;
    fs::remove(operation_lock::path);
    fs::create_symlink(package.root() / "target", operation_lock::path);
    {
        const operation_lock first;
        EXPECT_FALSE(fs::exists(package.root() / "target"));
        EXPECT_EQ("nothing thrown", refusal());
    }
    fs::remove(operation_lock::path);
}
