#include <csignal>
#include <filesystem>
#include <ostream>

#include "harness/tool_test.hpp"

namespace {

/// When the menu comes back after ENTER only.
enum class enter_t { never, unless_killed, always };

/// A program that the menu runs on the terminal.
struct child_row_t {
    const char* name;
    menu_item_t item;  ///< of its line
    enter_t awaitsEnter;
};

void PrintTo(const child_row_t& child, std::ostream* out) { *out << child.name; }

/// A child program does something that it should not, and the menu is as it was.
class misbehaving_child_test : public tool_test, public testing::WithParamInterface<child_row_t> {
protected:
    void run(const std::string& steps) {
        if (GetParam().name == std::string("more")) {
            package.remove("programs/less");
        }
        startMenu();
        package.let(GetParam().name, steps);
        moveTo(mainScreen().key(GetParam().item));
        menu = session->screen().picture();
        runsBefore = package.runs().size();
        session->press("\r");
    }

    void expectMenuAfterItsEnd() {
        const auto hasEnded = [&] {
            const auto runs = package.runs();
            return runs.size() > runsBefore && runs.back().name == GetParam().name &&
                   runs.back().ended;
        };
        session->await(hasEnded, "the child's end");
        if (GetParam().awaitsEnter != enter_t::never) {
            confirm();
        }
        expectMenu();
        EXPECT_EQ(std::string::npos, session->output().find("[WARN]"));
    }

    void expectMenuAfterItsDeath() {
        if (GetParam().awaitsEnter == enter_t::always) {
            confirm();
        }
        session->awaitScreen("[WARN] Command cannot be executed properly");
        session->awaitScreen("Press ENTER to continue...");
        confirm();
        expectMenu();
    }

private:
    void confirm() {
        session->awaitKeyWait();
        expectOwnMode();
        session->press("\r");
    }

    void expectMenu() {
        awaitMenu(mainScreen().key(GetParam().item));
        EXPECT_EQ(menu, session->screen().picture());
        EXPECT_FALSE(session->screen().isCursorVisible());
        expectOwnMode();
        moveTo(mainScreen().key(main_menu::exit));
    }

    void expectOwnMode() const {
        const tcflag_t cooked = ISIG | ICANON | ECHO;
        EXPECT_EQ(0U, session->terminal().attributes().c_lflag & cooked);
        EXPECT_NE(0U, session->terminal().attributes().c_iflag & ICRNL);
    }

    std::string menu;
    std::size_t runsBefore = 0;
};

class core_program_test : public tool_test {
protected:
    void expectWarning() {
        choose(1);
        session->awaitScreen("[WARN] Command cannot be executed properly");
        awaitEnterPrompt();
        session->press("\r");
        awaitMenu("1");
    }
};

}  // namespace

TEST_P(misbehaving_child_test, LeavesTheTerminalDeaf) {
    run("mode deaf");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, LeavesTheTerminalWithLineEditing) {
    run("mode cooked");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, LeavesAColourAndTheCursorInSight) {
    run(R"(print \033[41m\033[?25h)");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, LeavesTheTerminalToAGrandchild) {
    run("steal");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, ChangesTheTerminalAndDies) {
    run("print \\033[41m\\033[?25h\nmode deaf\nmode cooked\nsteal\nkill 9");
    expectMenuAfterItsDeath();
}

TEST_P(misbehaving_child_test, ClosesItsDescriptors) {
    run("close");
    expectMenuAfterItsEnd();
}

TEST_P(misbehaving_child_test, ReadsAllInput) {
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

INSTANTIATE_TEST_SUITE_P(Child, misbehaving_child_test,
                         testing::Values(child_row_t{"varnflash", main_menu::normalFlash,
                                                     enter_t::unless_killed},
                                         child_row_t{"less", main_menu::readme, enter_t::never},
                                         child_row_t{"more", main_menu::readme, enter_t::always}),
                         [](const auto& row) { return row.param.name; });

TEST_F(core_program_test, IsReplacedOrRemovedOrMadeUnusable) {
    startMenu();
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
