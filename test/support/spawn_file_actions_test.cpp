#include "support/spawn_file_actions.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "harness/test_surroundings.hpp"

TEST(SpawnFileActions, AreNoneAtFirst) { EXPECT_EQ(nullptr, spawn_file_actions().get()); }

TEST(SpawnFileActions, OpenTheNullDeviceWithTheGivenFlags) {
    const package_folder package;
    spawn_file_actions actions;
    actions.openNullDevice(O_WRONLY);
    std::string program = (package.programs() / "cat").string();
    char* arguments[] = {program.data(), nullptr};
    pid_t child = 0;
    ASSERT_EQ(0, posix_spawn(&child, arguments[0], actions.get(), nullptr, arguments, environ));
    waitpid(child, nullptr, 0);
    const auto descriptors = package.runs().at(0).descriptors;
    EXPECT_EQ("w /dev/null", descriptors.at(1));
    EXPECT_EQ("w /dev/null", descriptors.at(2));
}
