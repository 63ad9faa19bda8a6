#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include "harness/terminal_session.hpp"
#include "harness/test_surroundings.hpp"
#include "support/menu_exception.hpp"
#include "support/stream.hpp"

namespace {

struct open_stream : stream {
    using stream::currentInput;
};

/// Standard input as long as it lives: what is typed waits to be read, and where nothing waits a
/// read returns at once, as in raw mode.
class prepared_keyboard {
public:
    prepared_keyboard() {
        std::array<int, 2> ends{};
        EXPECT_EQ(0, pipe2(ends.data(), O_NONBLOCK));
        dup2(ends[0], STDIN_FILENO);
        close(ends[0]);
        typing = ends[1];
    }
    ~prepared_keyboard() {
        dup2(original, STDIN_FILENO);
        close(original);
        close(typing);
        std::clearerr(stdin);
    }

    prepared_keyboard(const prepared_keyboard&) = delete;
    prepared_keyboard& operator=(const prepared_keyboard&) = delete;

    void type(std::string_view bytes) const {
        EXPECT_EQ(std::ssize(bytes), write(typing, bytes.data(), bytes.size()));
    }

private:
    int original = dup(STDIN_FILENO);
    int typing = -1;
};

/// Is typed an x as soon as it is about to wait for a key.
struct prepared_stream : open_stream {
    explicit prepared_stream(const prepared_keyboard& keyboard) {
        settleBeforeWait = [&keyboard] {
            keyboard.type("x");
            return false;
        };
    }
};

/// What one read yields: the count and the input.
std::string readOnce(open_stream& input) {
    try {
        const int count = input.readInput();
        return std::to_string(count) + ":" + input.currentInput;
    } catch (const menu_exception& end) {
        return end.what();
    }
}

std::string readKeys(int reads) {
    setRawMode();
    open_stream input;
    std::string all;
    for (int i = 0; i < reads; ++i) {
        all += readOnce(input) + ";";
    }
    return all;
}

std::string pressed(const std::vector<std::string>& keys) {
    terminal_session session([&] { return readKeys(static_cast<int>(keys.size())); });
    for (const std::string& key : keys) {
        session.press(key);
    }
    return session.result();
}

/// What one read yields with this as standard input.
std::string readFrom(int descriptor) {
    const int original = dup(STDIN_FILENO);
    dup2(descriptor, STDIN_FILENO);
    close(descriptor);
    open_stream input;
    const std::string result = readOnce(input);
    dup2(original, STDIN_FILENO);
    close(original);
    return result;
}

/// What one read yields when each byte comes once the read waits for it.
std::string typedInPieces(const std::string& sequence) {
    terminal_session session([] { return readKeys(1); });
    session.awaitKeyWait();
    session.type(sequence.substr(0, 1));
    for (const char byte : sequence.substr(1)) {
        session.await([&] { return session.isWaitingForMore() || session.hasEnded(); },
                      "a wait for more");
        session.type(std::string(1, byte));
    }
    return session.result();
}

open_stream holding(const std::string& text) {
    open_stream input;
    input.currentInput = text;
    return input;
}

std::ptrdiff_t openDescriptors() {
    const std::filesystem::directory_iterator open("/proc/self/fd");
    return std::distance(begin(open), end(open));
}

}  // namespace

TEST(ReadInput, TakesOneKeyAfterTheOther) { EXPECT_EQ("1:1;1:x;1:\n;", pressed({"1", "x", "\r"})); }

TEST(ReadInput, TakesAWholeArrowKey) {
    EXPECT_EQ("3:\x1b[A;3:\x1bOB;", pressed({"\x1b[A", "\x1bOB"}));
}

TEST(ReadInput, TakesALoneEscape) { EXPECT_EQ("1:\x1b;1:2;", pressed({"\x1b", "2"})); }

TEST(ReadInput, ThrowsAwayWhatWasTypedEarlier) {
    terminal_session session([] {
        setRawMode();
        while (getchar() != 'g') {  // the test's own sign that all is typed
            clearerr(stdin);
        }
        return readKeys(1);
    });
    session.type("123g456");
    session.press("7");
    EXPECT_EQ("1:7;", session.result());
}

// A serial line delivers an arrow key in pieces: the read goes on until the sequence is whole. The
// pieces may come 50 ms apart, which a busy machine may miss, but not every time.
TEST(ReadInput, WaitsForTheRestOfASequence) {
    for (const std::string sequence : {"\x1b[A", "\x1bOA", "\x1b[1;5A", "\x1b[B\x1b[A"}) {
        const std::string whole = std::to_string(sequence.size()) + ":" + sequence + ";";
        std::string result;
        for (int tries = 0; tries < 20 && result != whole; ++tries) {
            result = typedInPieces(sequence);
        }
        EXPECT_EQ(whole, result);
    }
}

TEST(ReadInput, TakesNoDeleteForTheEndOfASequence) {
    bool waitedForMore = false;
    for (int tries = 0; tries < 20 && !waitedForMore; ++tries) {
        terminal_session session([] { return readKeys(1); });
        session.awaitKeyWait();
        session.type("\x1b[\x7f");
        session.await(
            [&] {
                waitedForMore = session.isWaitingForMore();
                return waitedForMore || session.hasEnded();
            },
            "a wait for more");
        session.type("~");
        session.awaitEnd();
    }
    EXPECT_TRUE(waitedForMore);
}

// Half a key is still the key that was typed earlier.
TEST(ReadInput, ThrowsAwayTheRestOfAnEarlierSequence) {
    std::string result;
    for (int tries = 0; tries < 20 && result != "1:7;"; ++tries) {
        terminal_session session([] {
            setRawMode();
            while (getchar() != 'g') {
                clearerr(stdin);
            }
            return readKeys(1);
        });
        session.type("g\x1b[");
        session.await([&] { return session.isWaitingForMore() || session.isWaitingForKey(); },
                      "a wait");
        session.type("A");
        session.press("7");
        result = session.result();
    }
    EXPECT_EQ("1:7;", result);
}

// It was pasted, belongs to the line end of an earlier ENTER, or comes from a key that is held:
// what follows without a pause is of the same kind.
TEST(ReadInput, ThrowsAwayWhatFollowsAnEarlierEnter) {
    for (const std::string enter : {"\r", "\n"}) {
        std::string result;
        for (int tries = 0; tries < 20 && result != "1:7;"; ++tries) {
            terminal_session session([] {
                setRawMode();
                while (getchar() != 'g') {
                    clearerr(stdin);
                }
                return readKeys(1);
            });
            session.type("gab" + enter);
            for (const std::string piece : {"4", enter.c_str(), "\x1b[B"}) {
                session.await(
                    [&] { return session.isWaitingForMore() || session.isWaitingForKey(); },
                    "a wait");
                session.type(piece);
            }
            if (session.awaitKeyWaitOrEnd()) {
                session.press("7");
            }
            result = session.result();
        }
        EXPECT_EQ("1:7;", result);
    }
}

// A held arrow key is to move the highlight as long as it is held. Waiting once for each of 40
// reads would take 2 s at least.
TEST(ReadInput, WaitsForNothingAfterEarlierKeysWithoutEnter) {
    const prepared_keyboard keyboard;
    prepared_stream input(keyboard);
    const auto start = std::chrono::steady_clock::now();
    for (int read = 0; read < 40; ++read) {
        keyboard.type("2\x1b[B");
        EXPECT_EQ("1:x", readOnce(input));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(ReadInput, WaitsForQuietAfterAnEarlierEnter) {
    for (const char* earlier : {"\n", "4 images\n", "\r2"}) {
        const prepared_keyboard keyboard;
        prepared_stream input(keyboard);
        keyboard.type(earlier);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ("1:x", readOnce(input));
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
    }
}

// A key that is held during a long operation fills nothing.
TEST(ReadInput, KeepsNothingOfWhatItThrowsAway) {
    constexpr long earlierBytes = 16L * 1024 * 1024;
    constexpr long mostKilobytes = 4L * 1024;
    terminal_session session([] {
        std::FILE* file = std::tmpfile();
        if (ftruncate(fileno(file), earlierBytes) != 0) {
            return std::string("no file");
        }
        rusage before{};
        getrusage(RUSAGE_SELF, &before);
        readFrom(dup(fileno(file)));
        rusage after{};
        getrusage(RUSAGE_SELF, &after);
        return std::to_string(after.ru_maxrss - before.ru_maxrss);
    });
    EXPECT_LT(std::stol(session.result()), mostKilobytes);
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
    std::array<int, 2> ends{};
    ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()));
    close(ends[1]);  // readable for ever, and never a byte
    EXPECT_EQ("0:", readFrom(ends[0]));
}

TEST(ReadInput, YieldsNothingAtEndOfFileBehindHalfASequence) {
    std::array<int, 2> ends{};
    ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()));
    ASSERT_EQ(2, write(ends[1], "\x1b[", 2));
    close(ends[1]);
    EXPECT_EQ("0:", readFrom(ends[0]));
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
    EXPECT_EQ("1:2", readOnce(input));
    EXPECT_EQ("user interruption", readOnce(input));
    EXPECT_EQ('9', getchar());  // untouched so far
}

TEST(QueueInput, InterruptsWithAnyTextThatEndsInCtrlC) {
    open_stream input;
    input.queueInput("12\x03");
    EXPECT_EQ("user interruption", readOnce(input));
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
