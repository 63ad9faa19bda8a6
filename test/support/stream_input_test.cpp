#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <numeric>

#include "harness/process_state.hpp"
#include "harness/terminal_session.hpp"
#include "support/open_stream.hpp"

namespace {

std::string pressed(const std::vector<std::string>& keys) {
    terminal_session session([&] { return readKeys(static_cast<int>(keys.size())); });
    for (const std::string& key : keys) {
        session.press(key);
    }
    return session.result();
}

/// What one read yields when each piece comes once the read waits for it.
std::string typedInPieces(const std::vector<std::string>& pieces) {
    terminal_session session([] { return readKeys(1); });
    session.awaitKeyWait();
    session.type(pieces.front());
    for (auto piece = pieces.begin() + 1; piece != pieces.end(); ++piece) {
        session.await([&] { return session.isWaitingForMore() || session.hasEnded(); },
                      "a wait for more");
        session.type(*piece);
    }
    return session.result();
}

open_stream holding(const std::string& text) {
    open_stream input;
    input.currentInput = text;
    return input;
}

}  // namespace

TEST(ReadInput, TakesOneKeyAfterTheOther) { EXPECT_EQ("1:1;1:x;1:\n;", pressed({"1", "x", "\r"})); }

TEST(ReadInput, TakesAWholeArrowKey) {
    EXPECT_EQ("3:\x1b[A;3:\x1bOB;", pressed({"\x1b[A", "\x1bOB"}));
}

TEST(ReadInput, TakesALoneEscape) { EXPECT_EQ("1:\x1b;1:2;", pressed({"\x1b", "2"})); }

// Where the line makes no line feed of it, it is the ENTER key all the same. Nobody holds a key
// down that is queued.
TEST(ReadInput, KnowsARepeatedEnter) {
    const auto lastIsRepeated = [](const std::vector<std::string>& keys) {
        terminal_session session([&] {
            enter_times::now = [] { return enter_times::clock_t::time_point(); };
            setRawMode();
            termios attributes{};
            tcgetattr(STDIN_FILENO, &attributes);
            attributes.c_iflag &= ~static_cast<tcflag_t>(ICRNL);
            tcsetattr(STDIN_FILENO, TCSANOW, &attributes);
            open_stream input;
            for (const std::string& key : keys) {
                if (key == "queued") {
                    input.queueInput("\n");
                }
                input.readInput();
            }
            return std::string(input.isRepeatedEnter() ? "repeat" : "press");
        });
        for (const std::string& key : keys) {
            if (key != "queued") {
                session.press(key);
            }
        }
        return session.result();
    };
    EXPECT_EQ("press", lastIsRepeated({"\n"}));
    EXPECT_EQ("repeat", lastIsRepeated({"\n", "\n"}));
    EXPECT_EQ("repeat", lastIsRepeated({"\r", "\n"}));
    EXPECT_EQ("press", lastIsRepeated({"\n", "2", "\n"}));
    EXPECT_EQ("press", lastIsRepeated({"\n", "\x1b[A", "\n"}));
    EXPECT_EQ("repeat", lastIsRepeated({"\x1b[A\n", "\n"}));
    EXPECT_EQ("press", lastIsRepeated({"\n", "\n", "queued"}));
}

// A serial line delivers an arrow key in pieces: the read goes on until the sequence is whole.
TEST(ReadInput, WaitsForTheRestOfASequence) {
    const std::vector<std::vector<std::string>> sequences{{"\x1b", "[", "A"},
                                                          {"\x1b", "O", "A"},
                                                          {"\x1b", "[", "1", ";", "5", "A"},
                                                          {"\x1b", "[", "B\x1b", "[", "A"}};
    for (const std::vector<std::string>& pieces : sequences) {
        const std::string sequence = std::accumulate(pieces.begin(), pieces.end(), std::string());
        const std::string whole = std::to_string(sequence.size()) + ":" + sequence + ";";
        EXPECT_EQ(whole, inAnyOfManyTries(whole, [&] { return typedInPieces(pieces); }));
    }
}

// Nobody can ever type again, and the signal that tells so may have gone to others only.
TEST(ReadInput, DiesWithItsTerminal) {
    terminal_session session([] {
        pseudo_terminal terminal(24, 80);
        dup2(terminal.slave(), STDIN_FILENO);
        setRawMode();
        terminal.hangUp();
        open_stream input;
        return readOnce(input);
    });
    const int status = session.awaitEnd();
    EXPECT_TRUE(WIFSIGNALED(status)) << session.result();
    EXPECT_EQ(SIGHUP, WTERMSIG(status));
}

// Waiting after each of 40 finished sequences would take 2 s at least.
TEST(ReadInput, DoesNotWaitAfterAFinishedSequence) {
    constexpr int reads = 40;
    terminal_session session([] {
        readKeys(1);
        const auto start = std::chrono::steady_clock::now();
        readKeys(reads);
        const auto duration = std::chrono::steady_clock::now() - start;
        return std::string(duration < std::chrono::seconds(2) ? "quick" : "slow");
    });
    for (int i = 0; i <= reads; ++i) {
        session.press("\x1b[A");
    }
    EXPECT_EQ("quick", session.result());
}

TEST(ReadInput, EndsTheMenuAtCtrlC) {
    EXPECT_EQ("user interruption;", pressed({"\x03"}));
    EXPECT_EQ("user interruption;", pressed({"\x1b[\x03"}));
}

TEST(ReadInput, YieldsNothingAtEndOfFile) {
    for (const std::string_view earlier : {"", "\x1b["}) {
        std::array<int, 2> ends{};
        ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()));
        ASSERT_EQ(earlier.size(), write(ends[1], earlier.data(), earlier.size()));
        close(ends[1]);  // readable for ever, and never another byte
        EXPECT_EQ("0:", readFrom(ends[0]));
    }
}

TEST(ReadInput, YieldsHalfASequenceThatEndsWithTheInput) {
    std::array<int, 2> ends{};
    ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends.data()));
    terminal_session session([&] {
        close(ends[1]);
        return readFrom(ends[0]);
    });
    close(ends[0]);
    session.awaitKeyWait();
    EXPECT_EQ(2, write(ends[1], "\x1b[", 2));
    close(ends[1]);
    EXPECT_EQ("2:\x1b[", session.result());
}

TEST(ReadInput, YieldsNothingWhereItCannotWait) {
    std::FILE* file = std::tmpfile();
    EXPECT_EQ("0:", readFrom(dup(fileno(file))));
    std::fclose(file);
    const typed_input pipeAtItsEnd("");
    EXPECT_EQ("0:", readFrom(dup(STDIN_FILENO)));
}

TEST(ReadInput, LeavesOneDescriptorOpenForEachKeyTyped) {
    terminal_session session([] {
        setRawMode();
        open_stream input;
        const std::ptrdiff_t before = openDescriptors();
        readOnce(input);
        readOnce(input);
        return std::to_string(openDescriptors() - before);
    });
    session.press("1");
    session.press("\x1b");
    EXPECT_EQ("2", session.result());
}

TEST(QueueInput, IsReadBeforeTheTerminal) {
    open_stream input;
    const typed_input keyboard("9");
    input.queueInput("2");
    input.queueInput("");
    input.queueInput("12\x03");
    EXPECT_EQ("1:2", readOnce(input));
    EXPECT_EQ("user interruption", readOnce(input));
    EXPECT_EQ("user interruption", readOnce(input));
    EXPECT_EQ('9', getchar());  // untouched so far
}

TEST(Classification, TellsNumbersFromOtherInput) {
    EXPECT_TRUE(holding("12").isNumber());
    EXPECT_TRUE(holding("").isNumber());
    EXPECT_FALSE(holding("1a").isNumber());
    EXPECT_FALSE(holding("-1").isNumber());
}

TEST(Classification, ReadsTheNumberAtTheStart) {
    EXPECT_EQ(12, holding("12x").inputAsNumber());
    EXPECT_EQ(1, holding("1a").inputAsNumber());
    EXPECT_EQ(7, holding("  7").inputAsNumber());
    EXPECT_EQ(0, holding("abc").inputAsNumber());
    EXPECT_EQ(0, holding("").inputAsNumber());
    EXPECT_EQ(INT_MAX, holding("99999999999999999999").inputAsNumber());
}

TEST(Classification, TakesALoneEscapeForNoSequence) {
    EXPECT_TRUE(holding("\x1b[A").isEscapeSequence());
    EXPECT_TRUE(holding("\x1bx").isEscapeSequence());
    EXPECT_FALSE(holding("\x1b").isEscapeSequence());
    EXPECT_FALSE(holding("x\x1b").isEscapeSequence());
}

TEST(Classification, TakesExactlyOneLineFeedForEnter) {
    EXPECT_TRUE(holding("\n").isEnter());
    EXPECT_FALSE(holding("\n\n").isEnter());
    EXPECT_FALSE(holding("\r").isEnter());
    EXPECT_FALSE(holding("").isEnter());
}
