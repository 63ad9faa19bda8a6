#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <string_view>

#include "harness/terminal_session.hpp"
#include "support/open_stream.hpp"

namespace {

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

}  // namespace

TEST(TypeAhead, IsThrownAway) {
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

// Half a key is still the key that was typed earlier.
TEST(TypeAhead, TakesTheRestOfItsLastSequenceAlong) {
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
TEST(TypeAhead, WithAnEnterTakesAlongWhatFollows) {
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
TEST(TypeAhead, WithoutAnEnterIsNotWaitedFor) {
    const prepared_keyboard keyboard;
    prepared_stream input(keyboard);
    const auto start = std::chrono::steady_clock::now();
    for (int read = 0; read < 40; ++read) {
        keyboard.type("2\x1b[B");
        EXPECT_EQ("1:x", readOnce(input));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(TypeAhead, WithAnEnterIsFollowedByQuiet) {
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
TEST(TypeAhead, TakesNoMemory) {
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
