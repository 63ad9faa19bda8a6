#include <csignal>
#include <filesystem>
#include <ostream>
#include <tuple>

#include "harness/process_state.hpp"
#include "harness/tool_test.hpp"

namespace {

/// When the menu comes back after ENTER only.
enum class enter_t { never, unless_killed, always };

/// A program that the menu runs on the terminal.
struct child_row_t {
    const char* name;
    const char* number;  ///< of its line
    enter_t awaitsEnter;
};

constexpr child_row_t coreProgramRow{"varnflash", "1", enter_t::unless_killed};
constexpr child_row_t lessRow{"less", "5", enter_t::never};
constexpr child_row_t moreRow{"more", "5", enter_t::always};

void PrintTo(const child_row_t& child, std::ostream* out) { *out << child.name; }

/// A child program does something that it should not, and the menu is as it was.
class child_test : public tool_test {
protected:
    explicit child_test(const child_row_t& row) : child(row) {
        if (child.name == std::string("more")) {
            package.remove("programs/less");
        }
    }

    void run(const std::string& steps) {
        startMenu();
        package.let(child.name, steps);
        session->press(child.number);
        awaitMenu(child.number);
        menu = session->screen().picture();
        runsBefore = package.runs().size();
        session->press("\r");
    }

    /// @return what is known of its run, with no process as long as it has not been started
    run_record_t record() const {
        const auto runs = package.runs();
        const bool isStarted = runs.size() > runsBefore && runs.back().name == child.name;
        return isStarted ? runs.back() : run_record_t{};
    }

    void expectMenuAfterItsEnd() {
        session->await([&] { return record().ended; }, "the child's end");
        if (child.awaitsEnter != enter_t::never) {
            confirm();
        }
        expectMenu();
        EXPECT_EQ(std::string::npos, session->output().find("[WARN]"));
    }

    void expectMenuAfterItsDeath() {
        if (child.awaitsEnter == enter_t::always) {
            confirm();
        }
        session->awaitScreen("[WARN] Command cannot be executed properly");
        session->awaitScreen("Press ENTER to continue...");
        confirm();
        expectMenu();
    }

    std::string menu;

private:
    void confirm() {
        session->awaitKeyWait();
        expectOwnMode();
        session->press("\r");
    }

    void expectMenu() {
        awaitMenu(child.number);
        EXPECT_EQ(menu, session->screen().picture());
        EXPECT_FALSE(session->screen().isCursorVisible());
        expectOwnMode();
        session->press("8");
        awaitMenu("8");
    }

    void expectOwnMode() const {
        const tcflag_t cooked = ISIG | ICANON | ECHO;
        EXPECT_EQ(0U, session->terminal().attributes().c_lflag & cooked);
        EXPECT_NE(0U, session->terminal().attributes().c_iflag & ICRNL);
    }

    child_row_t child;
    std::size_t runsBefore = 0;
};

class misbehaving_child_test : public child_test, public testing::WithParamInterface<child_row_t> {
protected:
    misbehaving_child_test() : child_test(GetParam()) {}
};

class killed_child_test : public child_test,
                          public testing::WithParamInterface<std::tuple<child_row_t, int>> {
protected:
    killed_child_test() : child_test(std::get<0>(GetParam())) {}
};

class core_program_test : public tool_test {};

const auto everyChild = testing::Values(coreProgramRow, lessRow, moreRow);
const auto everyPager = testing::Values(lessRow, moreRow);

std::string killedName(const testing::TestParamInfo<std::tuple<child_row_t, int>>& info) {
    const auto& [child, signal] = info.param;
    return std::string(child.name) + sigabbrev_np(signal);
}

}  // namespace

TEST_P(killed_child_test, IsAWarning) {
    run("kill " + std::to_string(std::get<1>(GetParam())));
    expectMenuAfterItsDeath();
}

INSTANTIATE_TEST_SUITE_P(
    Signals, killed_child_test,
    testing::Combine(everyChild,
                     testing::Values(SIGILL, SIGTRAP, SIGABRT, SIGBUS, SIGFPE, SIGKILL, SIGUSR1,
                                     SIGSEGV, SIGUSR2, SIGPIPE, SIGALRM, SIGTERM, SIGSTKFLT,
                                     SIGXCPU, SIGXFSZ, SIGVTALRM, SIGPROF, SIGIO, SIGPWR, SIGSYS)),
    killedName);

// A core program is kept from those.
INSTANTIATE_TEST_SUITE_P(HeldSignals, killed_child_test,
                         testing::Combine(everyPager, testing::Values(SIGHUP, SIGINT, SIGQUIT)),
                         killedName);

TEST_P(misbehaving_child_test, LeavesTheTerminalDeaf) {
    run("mode deaf");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, LeavesTheTerminalWithLineEditing) {
    run("mode cooked");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, ChangesTheTerminalAndDies) {
    run("mode deaf\nmode cooked\nsteal\nkill 9");
    expectMenuAfterItsDeath();
}

TEST_P(misbehaving_child_test, LeavesTheCursorInSight) {
    run(R"(print \033[?25h)");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, LeavesAColour) {
    run(R"(print \033[41m)");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, DiesInAColour) {
    run("print \\033[41m\\033[?25h\nkill 9");
    expectMenuAfterItsDeath();
}

TEST_P(misbehaving_child_test, LeavesTheTerminalToAGrandchild) {
    run("steal");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, ClosesItsDescriptors) {
    run("close");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, ReadsAllInput) {
    run("swallow");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, ReadsAllInputLineByLine) {
    run("mode cooked\nprint reading\nswallow");
    session->awaitScreen("reading");
    session->type("3\r\x04");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, FloodsTheTerminal) {
    run("flood 10");
    expectMenuAfterItsEnd();
    EXPECT_NE(std::string::npos, session->output().find("that was all"));
}

TEST_P(misbehaving_child_test, StopsAndGoesOn) {
    run("kill 19\nprint went on");
    session->await([&] { return isStopped(record().process); }, "the child to stop");
    kill(record().process, SIGCONT);
    expectMenuAfterItsEnd();
    EXPECT_NE(std::string::npos, session->output().find("went on"));
}

INSTANTIATE_TEST_SUITE_P(Child, misbehaving_child_test, everyChild,
                         [](const auto& row) { return row.param.name; });

TEST_F(core_program_test, IsReplacedOrRemovedOrMadeUnusable) {
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
