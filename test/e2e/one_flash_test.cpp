#include <sys/mount.h>

#include <algorithm>
#include <csignal>

#include "flash/operation_lock.hpp"
#include "harness/tool_test.hpp"

namespace {

constexpr const char* anotherIsAtWork = "Another flash or reboot is at work on this server";

/// A second menu on the same server.
class one_flash_test : public tool_test {
protected:
    ~one_flash_test() override {
        mount(nullptr, "/run", nullptr, MS_REMOUNT, nullptr);
        std::filesystem::remove(operation_lock::path);
    }

    void startFlash() {
        startMenu();
        package.hold("varnflash");
        choose(1);
        session->awaitScreen("at work");
        package.let("varnflash", "");  // from now on
    }

    /// Starts another menu; the tests go on with that one.
    void startSecondMenu() {
        std::swap(first, session);
        startMenu();
    }

    void expectRefused(int number) {
        const auto before = operations();
        choose(number);
        session->awaitScreen(std::string("[WARN] ") + anotherIsAtWork);
        EXPECT_EQ(before, operations());
        session->press("\r");
        awaitMenu(std::to_string(number));
    }

    void expectFlash() {
        const auto before = operations();
        choose(1);
        session->await([&] { return operations() == before + 1; }, "the flash");
        session->awaitKeyWait();
        EXPECT_FALSE(session->screen().contains("[WARN]"));
    }

    void awaitFree() {
        session->await([] { return isFree(); }, "the end of all that is at work");
    }

    static bool isFree() {
        try {
            const operation_lock attempt;
            return true;
        } catch (const std::runtime_error&) {
            return false;
        }
    }

    std::ptrdiff_t operations() const {
        const auto lines = package.commandLines();
        return std::ssize(lines) - std::count(lines.begin(), lines.end(), "./varnflash /ispfr");
    }

    std::unique_ptr<terminal_session> first;
};

}  // namespace

TEST_F(one_flash_test, IsAtWorkInOneMenu) {
    startFlash();
    startSecondMenu();
    expectRefused(2);
    expectRefused(mainScreen().number(main_menu::reboot));
    package.letGo();
    first->awaitScreen("work done");
    first->awaitKeyWait();
    expectFlash();  // although nobody has seen the first one's result yet
}

// Its session was closed, or somebody has ended it.
TEST_F(one_flash_test, IsAtWorkWithoutItsMenu) {
    startFlash();
    session->signal(SIGKILL);
    session->awaitEnd();
    startSecondMenu();
    expectRefused(1);
    package.letGo();
    awaitFree();
    expectFlash();
}

TEST_F(one_flash_test, IsAtWorkAsLongAsWhatItLeavesBehind) {
    package.hold("varnflash");
    package.let("varnflash", "");
    startMenu();
    package.let("varnflash", "daemon go");
    expectFlash();
    session->press("\r");
    awaitMenu("1");
    expectRefused(2);
    package.letGo();
    awaitFree();
    package.let("varnflash", "");
    expectFlash();
}

// No other child keeps the lock of an operation before.
TEST_F(one_flash_test, LocksNothingAfterwards) {
    startMenu();
    expectFlash();
    session->press("\r");
    awaitMenu("1");
    package.hold("less");
    choose(mainScreen().number(main_menu::readme));
    session->awaitScreen("at work");
    startSecondMenu();
    expectFlash();
    package.letGo();
}

TEST_F(one_flash_test, IsNotKeptFromWorkWithoutAPlaceForTheLock) {
    ASSERT_EQ(0, mount(nullptr, "/run", nullptr, MS_REMOUNT | MS_RDONLY, nullptr));
    startMenu();
    expectFlash();
    EXPECT_FALSE(std::filesystem::exists(operation_lock::path));
}

TEST_F(one_flash_test, IsNotKeptFromWorkByALinkInThePlaceOfTheLock) {
    std::filesystem::create_symlink(package.root() / "target", operation_lock::path);
    startMenu();
    expectFlash();
    EXPECT_FALSE(std::filesystem::exists(package.root() / "target"));
}

// It is asked only, and starts nothing.
TEST_F(one_flash_test, KeepsNoMenuFromStarting) {
    startFlash();
    startSecondMenu();
    EXPECT_EQ("./varnflash /ispfr", package.commandLines().back());
    package.letGo();
}
