#include "term/termcurses.hpp"

#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>

#include "harness/test_surroundings.hpp"
#include "term/linux_terminal.hpp"

namespace {

/// What the call prints to a "linux" terminal.
std::string printed(const std::function<void(termcurses&)>& call) {
    terminal_session session([&] {
        useTerminal("linux");
        termcurses terminal;
        std::fputs("<", stdout);
        call(terminal);
        std::fputs(">", stdout);
        return std::string();
    });
    session.awaitEnd();
    const std::string& output = session.output();
    const std::size_t start = output.find('<') + 1;
    return output.substr(start, output.rfind('>') - start);
}

std::string currentMode() {
    termios attributes{};
    tcgetattr(STDIN_FILENO, &attributes);
    return (attributes.c_lflag & ICANON) != 0 ? "user" : "raw";
}

}  // namespace

TEST(TermcursesSequences, AreLoadedForEveryCapability) {
    EXPECT_EQ("16 \x1b[A \x1bOA \x1b[B \x1bOB", on("linux", [](termcurses& terminal) {
                  std::string all = std::to_string(terminal.sequences.size());
                  for (const std::uint32_t id : {12U, 13U, 14U, 15U}) {
                      all += " " + terminal.sequences.at(id);
                  }
                  return all;
              }));
    EXPECT_EQ("\x1bOA \x1b[A", on("xterm", [](termcurses& terminal) {
                  return terminal.sequences.at(12) + " " + terminal.sequences.at(13);
              }));
}

TEST(TermcursesSequences, HaveAnAlternativeOfThreeCharacters) {
    EXPECT_EQ("\x1bO1 \x1b[5 \x1bO", on("linux", [](termcurses& terminal) {
                  return terminal.alternative("\x1b[1~") + " " + terminal.alternative("\x1bO5x") +
                         " " + terminal.alternative("\x1b[");
              }));
    EXPECT_EQ("exception: Cannot match alternative terminal sequence",
              on("linux", [](termcurses& terminal) { return terminal.alternative("ab"); }));
}

TEST(TermcursesSequences, AreReachedWithACheck) {
    EXPECT_EQ("out of range", on("linux", [](termcurses& terminal) -> std::string {
                  const std::string bold = terminal.sequences.at(7);
                  terminal.sequences.erase(7);
                  try {
                      terminal.setBold();
                  } catch (const std::out_of_range&) {
                      terminal.sequences[7] = bold;
                      return "out of range";
                  }
                  return "printed";
              }));
}

TEST(TermcursesSequences, AreParameterisedAsSet) {
    EXPECT_EQ("\x1b[31m(1)(4)", printed([](termcurses& terminal) {
                  terminal.setForeground(1);
                  terminal.parameterise = [](const std::string&, std::int32_t number) {
                      return "(" + std::to_string(number) + ")";
                  };
                  terminal.setForeground(1);
                  terminal.setBackground(4);
              }));
}

TEST(TermcursesPrint, RefusesAnEmptySequenceEvenWhenSilent) {
    EXPECT_EQ("Cannot print terminal line", on("linux", [](termcurses& terminal) {
                  terminal.silent = true;
                  return thrown<std::runtime_error>([&] { terminal.print(""); });
              }));
    EXPECT_EQ("", printed([](termcurses& terminal) {
                  terminal.silent = true;
                  terminal.print("x");
                  terminal.silent = false;
              }));
}

TEST(TermcursesOutput, KnowsFourScreenCommands) {
    const auto command = [](int number) {
        return printed([number](termcurses& terminal) { terminal.screenCommand(number); });
    };
    EXPECT_EQ(linuxClear, command(0));
    EXPECT_EQ(linuxHide, command(1));
    EXPECT_EQ(linuxShow, command(2));
    EXPECT_EQ(linuxReset, command(3));
    EXPECT_EQ("", command(4));
    EXPECT_EQ("", command(-1));
}

TEST(TermcursesOutput, SetsColoursAndBold) {
    EXPECT_EQ("\x1b[37m\x1b[44m\x1b[1m", printed([](termcurses& terminal) {
                  terminal.setForeground(7);
                  terminal.setBackground(4);
                  terminal.setBold();
              }));
}

TEST(TermcursesOutput, HighlightsWithoutPrinting) {
    EXPECT_EQ("", printed([](termcurses& terminal) { terminal.highlight("x"); }));
    EXPECT_EQ("\x1b[7mtext\x1b[m\x0f",
              on("linux", [](termcurses& terminal) { return terminal.highlight("text"); }));
}

TEST(TermcursesOutput, GoesUpFromTheStartOfTheLine) {
    EXPECT_EQ(
        "\x1b"
        "7\r\x1b[14A",
        printed([](termcurses& terminal) { terminal.cursorUp(14); }));
}

TEST(TermcursesKeys, HaveSequences) {
    EXPECT_EQ("\x1b[A|\x1b[B|\n||", on("linux", [](termcurses& terminal) {
                  std::string all;
                  for (const std::uint32_t key : {0U, 1U, 2U, 3U}) {
                      all += terminal.keySequence(key) + "|";
                  }
                  return all;
              }));
}

TEST(TermcursesKeys, AreRecognisedInBothForms) {
    const auto recognised = [](std::uint32_t key, const std::string& input) {
        return on("linux", [&](termcurses& terminal) {
            return std::string(terminal.isKey(key, input) ? "yes" : "no");
        });
    };
    EXPECT_EQ("yes", recognised(0, "\x1b[A"));
    EXPECT_EQ("yes", recognised(0, "\x1bOA"));
    EXPECT_EQ("yes", recognised(1, "\x1b[B"));
    EXPECT_EQ("yes", recognised(1, "\x1bOB"));
    EXPECT_EQ("no", recognised(0, "\x1b[B"));
    EXPECT_EQ("no", recognised(0, "\x1b[Ax"));
    EXPECT_EQ("no", recognised(0, "\x1b["));
    EXPECT_EQ("no", recognised(2, "\n"));
}

TEST(TermcursesMode, SwitchesModeScreenAndCursor) {
    const auto mode = [](std::uint32_t number) {
        return printed([number](termcurses& terminal) { terminal.setMode(number); });
    };
    EXPECT_EQ("", mode(0));
    EXPECT_EQ("", mode(1));
    EXPECT_EQ(std::string(linuxClear) + linuxHide, mode(2));
    EXPECT_EQ(std::string(linuxClear) + linuxShow, mode(3));
    EXPECT_EQ(linuxShow, mode(4));
    EXPECT_EQ("", mode(5));
}

TEST(TermcursesMode, GivesTheUsersAttributesBackInBetween) {
    EXPECT_EQ("raw user raw", on("linux", [](termcurses& terminal) {
                  std::string all = currentMode();
                  terminal.setMode(1);
                  all += " " + currentMode();
                  terminal.setMode(0);
                  return all + " " + currentMode();
              }));
}

// The saved attributes are those of the last time: taken twice, the user's are lost.
TEST(TermcursesMode, SavesTheAttributesAtEveryInitialisation) {
    terminal_session session([] {
        useTerminal("linux");
        termcurses terminal;
        terminal.setMode(0);
        return std::string();
    });
    session.awaitEnd();
    EXPECT_FALSE(session.terminal().isCooked());
}

TEST(TermcursesMode, RefusesAnyOtherKindAndLeavesTheTerminalAsItWas) {
    EXPECT_EQ("Cannot un-initialize terminal raw", on("linux", [](termcurses& terminal) {
                  return thrown<std::invalid_argument>(
                             [&] { terminal.initTerminal(static_cast<term_init_t>(2)); }) +
                         " " + currentMode();
              }));
}

// Each part of the mode by itself; and what is given back in the end stays as it is.
TEST(TermcursesMode, ResumesWhateverHasChanged) {
    terminal_session session([] {
        useTerminal("linux");
        termcurses terminal;
        termios own{};
        tcgetattr(STDIN_FILENO, &own);
        const auto isResumedAfter = [&own](const std::function<void(termios&)>& change) {
            termios changed = own;
            change(changed);
            tcsetattr(STDIN_FILENO, TCSANOW, &changed);
            termcurses::resumeMode();
            termios now{};
            tcgetattr(STDIN_FILENO, &now);
            return now.c_iflag == own.c_iflag && now.c_oflag == own.c_oflag &&
                   now.c_cflag == own.c_cflag && now.c_lflag == own.c_lflag &&
                   now.c_cc[VMIN] == own.c_cc[VMIN];
        };
        std::string resumed;
        resumed += isResumedAfter([](termios& mode) { mode.c_iflag ^= ICRNL; }) ? 'i' : '-';
        resumed += isResumedAfter([](termios& mode) { mode.c_oflag ^= ONLCR; }) ? 'o' : '-';
        resumed += isResumedAfter([](termios& mode) { mode.c_cflag ^= CSTOPB; }) ? 'c' : '-';
        resumed += isResumedAfter([](termios& mode) { mode.c_lflag ^= ECHO; }) ? 'l' : '-';
        resumed += isResumedAfter([](termios& mode) { mode.c_cc[VMIN] = 5; }) ? 'k' : '-';
        return resumed;
    });
    EXPECT_EQ("ioclk", session.result());
    EXPECT_TRUE(session.terminal().isCooked());
}

TEST(TermcursesWindow, HasTheSizeOfTheTerminal) {
    terminal_session session(
        [] {
            const window_size_t size = termcurses::windowSize();
            return std::to_string(size.rows) + "x" + std::to_string(size.columns);
        },
        31, 97);
    EXPECT_EQ("31x97", session.result());
}

TEST(TermcursesWindow, IsUnknownWithoutATerminal) {
    const captured_output output;
    const window_size_t size = termcurses::windowSize();
    EXPECT_EQ(0, size.rows);
    EXPECT_EQ(0, size.columns);
}
