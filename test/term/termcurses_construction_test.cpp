#include <gtest/gtest.h>
#include <sys/wait.h>
#include <termios.h>

#include <cstdio>
#include <cstdlib>

#include "harness/package_folder.hpp"
#include "harness/test_surroundings.hpp"
#include "term/linux_terminal.hpp"
#include "term/termcurses.hpp"

namespace {

std::string constructionFailure(const char* name) {
    return on(name, [](termcurses&) { return std::string("constructed"); });
}

/// Describes terminals of the test's own; see tic(1).
class own_terminals {
public:
    explicit own_terminals(const std::string& description) {
        folder.write("own.ti", description);
        const std::string command = "tic -x -o " + folder.root().string() + " " +
                                    (folder.root() / "own.ti").string() + " 2>/dev/null";
        EXPECT_EQ(0, std::system(command.c_str()));
        setenv("TERMINFO", folder.root().c_str(), 1);
    }
    ~own_terminals() { unsetenv("TERMINFO"); }

private:
    package_folder folder;
};

}  // namespace

TEST(TermcursesConstruction, ClearsTheScreenAndHidesTheCursor) {
    terminal_session session([] {
        useTerminal("linux");
        const termcurses terminal;
        std::fputs("end", stdout);
        return std::string();
    });
    session.awaitEnd();
    EXPECT_EQ(std::string(linuxClear) + linuxHide + "end" + linuxClear + linuxShow,
              session.output());
}

TEST(TermcursesConstruction, TakesTheRawModeAndGivesTheUsersBack) {
    terminal_session session([] {
        useTerminal("linux");
        {
            const termcurses terminal;
            while (getchar() != 'x') {
                clearerr(stdin);
            }
        }
        return std::string();
    });
    const termios before = pseudo_terminal(24, 80).attributes();
    session.await([&] { return !session.terminal().isCooked(); }, "the raw mode");
    const termios during = session.terminal().attributes();
    session.type("x");
    session.awaitEnd();
    const termios after = session.terminal().attributes();

    EXPECT_EQ(before.c_lflag & ~static_cast<tcflag_t>(ISIG | ICANON | ECHO), during.c_lflag);
    EXPECT_EQ(0, during.c_cc[VMIN]);
    EXPECT_EQ(0, during.c_cc[VTIME]);
    EXPECT_EQ(before.c_oflag, during.c_oflag);
    EXPECT_EQ(before.c_iflag, during.c_iflag);
    EXPECT_EQ(before.c_lflag, after.c_lflag);
    EXPECT_EQ(before.c_cc[VMIN], after.c_cc[VMIN]);
}

// vt100 is what is loaded then, and it has no colours.
TEST(TermcursesConstruction, TakesVt100WithoutTerm) {
    EXPECT_EQ("exception: Cannot initialize terminal sequences", constructionFailure(nullptr));
    EXPECT_EQ("exception: Cannot initialize terminal sequences", constructionFailure(""));
    const own_terminals own("vt100|test vt100 that can all,\n\tsetaf=F%p1%d,\n\tuse=linux,\n");
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_EQ("F1", on(name, [](termcurses& terminal) {
                      return terminal.parameterise(terminal.sequences.at(3), 1);
                  }));
    }
}

// The terminal counts in a variable of terminfo's how often it is asked, from 0 whenever it is set
// up; see terminfo(5), "Parameterized Strings".
TEST(TermcursesConstruction, AsksTerminfoOnceForEachSequenceAndNumber) {
    const own_terminals own(
        "counting|linux that counts,\n"
        "\tsetaf=F%p1%d.%gA%d%gA%{1}%+%PA,\n"
        "\tsetab=B%p1%d.%gA%d%gA%{1}%+%PA,\n"
        "\tuse=linux,\n");
    EXPECT_EQ("F1.0 F2.1 B1.2 F1.0 F1.3 F1.3 F1.0 ", on("counting", [](termcurses& terminal) {
                  std::string all;
                  const auto ask = [&](std::uint32_t capability, int number) {
                      all += terminal.parameterise(terminal.sequences.at(capability), number) + " ";
                  };
                  ask(3, 1);
                  ask(3, 2);
                  ask(4, 1);
                  ask(3, 1);
                  terminal.initSequences();
                  ask(3, 1);
                  ask(3, 1);
                  terminal.initTermcurses();
                  ask(3, 1);
                  return all;
              }));
}

TEST(TermcursesConstruction, NeedsATerminal) {
    const typed_input pipe("");
    EXPECT_EQ("Cannot initialize terminal", thrown<std::invalid_argument>([] { termcurses(); }));
}

TEST(TermcursesConstruction, NeedsEverySequence) {
    for (const std::string name : {"clear", "civis", "cnorm", "setaf", "setab", "sc", "cr", "bold",
                                   "rev", "sgr0", "cuu", "cud", "kcuu1", "kcud1"}) {
        const own_terminals own("lacking|linux that lacks one,\n\t" + name + "@,\n\tuse=linux,\n");
        EXPECT_EQ("exception: Cannot initialize terminal sequences", constructionFailure("lacking"))
            << name;
    }
}

TEST(TermcursesConstruction, NeedsArrowKeysOfAnsiForm) {
    const own_terminals own("other-keys|linux with other keys,\n\tkcuu1=^K,\n\tuse=linux,\n");
    EXPECT_EQ("exception: Cannot match alternative terminal sequence",
              constructionFailure("other-keys"));
}

// A failure to give the terminal back must not be hidden.
TEST(TermcursesDestruction, EndsTheProcessOnFailure) {
    terminal_session session([] {
        useTerminal("linux");
        termcurses terminal;
        terminal.sequences.erase(0);
        return std::string();
    });
    const int status = session.awaitEnd();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
}
