#include <csignal>
#include <cstring>
#include <filesystem>

#include "e2e/tool_test.hpp"

namespace {

class misbehaving_core_program_test : public tool_test {
protected:
    /// Flashes with a core program that does this, and goes on to the menu.
    void flashWith(const std::string& steps) {
        startMenu();
        package.let("varnflash", steps);
        choose(1);
        awaitCoreProgramsEnd();
        expectOwnMode();
        session->press("\r");
        awaitMenu("1");
        session->press("8");
        awaitMenu("8");
    }

    /// It is asked once at the start, and runs for the second time now.
    void awaitCoreProgramsEnd() {
        session->await([&] { return package.runs().size() == 2 && package.runs().back().ended; },
                       "the core program to end");
        session->awaitKeyWait();
    }

    void expectOwnMode() const {
        const tcflag_t cooked = ISIG | ICANON | ECHO;
        EXPECT_EQ(0U, session->terminal().attributes().c_lflag & cooked);
        EXPECT_NE(0U, session->terminal().attributes().c_iflag & ICRNL);
    }
};

class killed_core_program_test : public misbehaving_core_program_test,
                                 public testing::WithParamInterface<int> {};

}  // namespace

TEST_P(killed_core_program_test, IsAWarning) {
    startMenu();
    package.let("varnflash", "kill " + std::to_string(GetParam()));
    choose(2);
    session->awaitScreen("[WARN] Command cannot be executed properly");
    session->awaitScreen("Press ENTER to continue...");
    session->press("\r");
    awaitMenu("2");
}

INSTANTIATE_TEST_SUITE_P(Signals, killed_core_program_test,
                         testing::Values(SIGILL, SIGTRAP, SIGABRT, SIGBUS, SIGFPE, SIGKILL, SIGUSR1,
                                         SIGSEGV, SIGUSR2, SIGPIPE, SIGALRM, SIGTERM, SIGXCPU,
                                         SIGXFSZ, SIGVTALRM, SIGPROF, SIGIO, SIGPWR, SIGSYS),
                         [](const auto& signal) { return sigabbrev_np(signal.param); });

TEST_F(misbehaving_core_program_test, LeavesTheTerminalDeaf) { flashWith("mode deaf"); }

TEST_F(misbehaving_core_program_test, LeavesTheTerminalWithLineEditing) {
    flashWith("mode cooked");
}

TEST_F(misbehaving_core_program_test, ChangesTheTerminalAndDies) {
    startMenu();
    package.let("varnflash", "mode deaf\nkill 9");
    choose(1);
    session->awaitScreen("Press ENTER to continue...");
    session->awaitKeyWait();
    expectOwnMode();
    session->press("\r");
    awaitMenu("1");
}

TEST_F(misbehaving_core_program_test, LeavesTheTerminalToAGrandchild) { flashWith("steal"); }

TEST_F(misbehaving_core_program_test, ClosesItsDescriptors) { flashWith("close"); }

TEST_F(misbehaving_core_program_test, ReadsAllInput) {
    startMenu();
    package.let("varnflash", "swallow");
    choose(1);
    awaitCoreProgramsEnd();
    session->press("\r");
    awaitMenu("1");
}

TEST_F(misbehaving_core_program_test, FloodsTheTerminal) {
    startMenu();
    package.let("varnflash", "flood 100");
    choose(1);
    session->awaitScreen("that was all");
    session->press("\r");
    awaitMenu("1");
}

TEST_F(misbehaving_core_program_test, StopsAndGoesOn) {
    startMenu();
    package.let("varnflash", "kill 19\nprint went on");
    choose(1);
    session->await([&] { return package.runs().size() == 2; }, "the core program");
    session->await(
        [&] {
            kill(package.runs().back().process, SIGCONT);
            return session->screen().contains("went on");
        },
        "the core program to go on");
    session->press("\r");
    awaitMenu("1");
}

TEST_F(misbehaving_core_program_test, IsReplacedOrRemovedOrMadeUnusable) {
    startMenu();
    const auto expectWarning = [&] {
        choose(1);
        session->awaitScreen("[WARN] Command cannot be executed properly");
        session->awaitScreen("Press ENTER");
        session->press("\r");
        awaitMenu("1");
    };
    std::filesystem::permissions(package.tool() / "varnflash", std::filesystem::perms(0600));
    expectWarning();
    package.remove("tool/varnflash");
    expectWarning();
    package.write("tool/varnflash", "no program");
    std::filesystem::permissions(package.tool() / "varnflash", std::filesystem::perms(0755));
    expectWarning();
    package.remove("tool/varnflash");
    std::filesystem::copy_file(package.programs() / "cat", package.tool() / "varnflash");
    package.let("varnflash", "print another program");
    choose(1);
    session->awaitScreen("another program");
    session->press("\r");
    awaitMenu("1");
}

TEST_F(misbehaving_core_program_test, OrAPagerLeavesTheTerminalDeaf) {
    package.remove("programs/less");
    startMenu();
    package.let("more", "show\nmode deaf");
    choose(5);
    session->awaitScreen("Press ENTER to close the file...");
    session->awaitKeyWait();
    expectOwnMode();
    session->press("\r");
    awaitMenu("5");
    package.let("more", "mode cooked\nsteal\nkill 9");
    session->press("\r");
    session->awaitScreen("Press ENTER to close the file...");
    session->press("\r");
    session->awaitScreen("[WARN] Command cannot be executed properly");
    session->press("\r");
    awaitMenu("5");
}
