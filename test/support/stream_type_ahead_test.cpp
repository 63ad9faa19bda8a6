#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <string_view>

#include "harness/terminal_session.hpp"
#include "support/open_stream.hpp"

namespace {

/// A terminal on which keys are typed ahead of so many reads, each up to the byte "g", the test's
/// own sign that all is typed.
class typed_ahead {
public:
    /// @param carriageReturn what becomes of one: ICRNL, a line feed, or none, what it is
    explicit typed_ahead(int reads, tcflag_t carriageReturn = ICRNL)
        : session([reads, carriageReturn] {
              termios attributes{};
              tcgetattr(STDIN_FILENO, &attributes);
              attributes.c_iflag &= ~static_cast<tcflag_t>(ICRNL) | carriageReturn;
              tcsetattr(STDIN_FILENO, TCSANOW, &attributes);
              setRawMode();
              open_stream input;
              std::string all;
              const auto start = std::chrono::steady_clock::now();
              for (int read = 0; read < reads; ++read) {
                  while (getchar() != 'g') {
                      clearerr(stdin);
                  }
                  all += readOnce(input) + ";";
              }
              const auto elapsed = std::chrono::steady_clock::now() - start;
              return all + std::to_string(elapsed / std::chrono::milliseconds(1));
          }) {}

    /// Types these bytes, and the key as soon as it is waited for.
    void type(const std::string& earlier, const std::string& key) {
        session.await([this] { return !session.terminal().isCooked(); }, "the raw mode");
        session.type("g" + earlier);
        session.press(key);
    }

    /// Types the pieces, each while the read throws away what came before it.
    void typeInPieces(const std::vector<std::string>& pieces) {
        session.type("g" + pieces.front());
        for (auto piece = pieces.begin() + 1; piece != pieces.end(); ++piece) {
            session.await([&] { return session.isWaitingForMore() || session.isWaitingForKey(); },
                          "a wait");
            session.type(*piece);
        }
    }

    /// @return what the reads yielded
    std::string result() {
        const std::string all = session.result();
        const std::size_t end = all.rfind(';') + 1;
        duration = std::chrono::milliseconds(std::stol(all.substr(end)));
        return all.substr(0, end);
    }

    std::chrono::milliseconds duration{};  ///< of all reads, once there is a result

    terminal_session session;
};

constexpr suseconds_t signalGap = 2000;  // microseconds

/// Sends so many signals to the process itself, and then says so on the terminal.
void sendSignals() {
    static volatile std::sig_atomic_t left = 30;
    std::signal(SIGALRM, [](int) {
        left = left - 1;
        if (left == 0) {
            const itimerval off{};
            setitimer(ITIMER_REAL, &off, nullptr);
            static_cast<void>(write(STDOUT_FILENO, "no more", 7) < 0);
        }
    });
    const itimerval gap{{0, signalGap}, {0, signalGap}};
    setitimer(ITIMER_REAL, &gap, nullptr);
}

}  // namespace

TEST(TypeAhead, IsThrownAway) {
    typed_ahead user(1);
    user.session.type("123");
    user.type("456", "7");
    EXPECT_EQ("1:7;", user.result());
}

// Half a key is still the key that was typed earlier.
TEST(TypeAhead, TakesTheRestOfItsLastSequenceAlong) {
    const std::string expected = "1:7;";
    EXPECT_EQ(expected, inAnyOfManyTries(expected, [] {
                  typed_ahead user(1);
                  user.typeInPieces({"\x1b[", "A"});
                  user.session.press("7");
                  return user.result();
              }));
}

// It was pasted, belongs to the line end of an earlier ENTER, or comes from a key that is held:
// what follows without a pause is of the same kind.
TEST(TypeAhead, WithAnEnterTakesAlongWhatFollows) {
    const std::string expected = "1:7;";
    for (const std::string enter : {"\r", "\n"}) {
        EXPECT_EQ(expected, inAnyOfManyTries(expected, [&] {
                      typed_ahead user(1);
                      user.typeInPieces({"ab" + enter, "4", enter, "\x1b[B"});
                      if (user.session.awaitKeyWaitOrEnd()) {
                          user.session.press("7");
                      }
                      return user.result();
                  }));
    }
}

// A held arrow key is to move the highlight as long as it is held. Waiting once for each of 100
// reads would take 5 s at least.
TEST(TypeAhead, WithoutAnEnterIsNotWaitedFor) {
    constexpr int reads = 100;
    typed_ahead user(reads);
    std::string expected;
    for (int read = 0; read < reads; ++read) {
        user.type("2\x1b[B", "x");
        expected += "1:x;";
    }
    EXPECT_EQ(expected, user.result());
    EXPECT_LT(user.duration, std::chrono::seconds(5));
}

TEST(TypeAhead, WithAnEnterIsFollowedByQuiet) {
    constexpr tcflag_t none = 0;
    for (const tcflag_t carriageReturn : {static_cast<tcflag_t>(ICRNL), none}) {
        for (const char* earlier : {"\n", "4 images\n", "\r2"}) {
            typed_ahead user(1, carriageReturn);
            user.type(earlier, "x");
            EXPECT_EQ("1:x;", user.result());
            EXPECT_GE(user.duration, std::chrono::milliseconds(50));
        }
    }
}

// The ENTER that is pressed then may be the next one of a held key.
TEST(TypeAhead, WithAnEnterMakesTheNextOneARepeat) {
    for (const char* earlier : {"\n", "2"}) {
        terminal_session session([] {
            enter_times::now = [] { return enter_times::clock_t::time_point(); };
            setRawMode();
            open_stream input;
            while (getchar() != 'g') {
                clearerr(stdin);
            }
            input.readInput();
            return std::string(input.isRepeatedEnter() ? "repeat" : "press");
        });
        session.await([&] { return !session.terminal().isCooked(); }, "the raw mode");
        session.type(std::string("g") + earlier);
        session.press("\r");
        EXPECT_EQ(*earlier == '\n' ? "repeat" : "press", session.result());
    }
}

// One is an answer that a script gives early; of several, more may be on the way.
TEST(TypeAhead, OfASingleEnterIsLeftAndOfSeveralNoneAfterAQuiet) {
    const auto left = [](const std::string& earlier) {
        terminal_session session([] {
            setRawMode();
            open_stream input;
            while (getchar() != 'g') {
                clearerr(stdin);
            }
            const auto start = std::chrono::steady_clock::now();
            input.discardKnocking();
            const bool isQuiet =
                std::chrono::steady_clock::now() - start >= std::chrono::milliseconds(50);
            return std::to_string(open_stream::readByte()) + (isQuiet ? " quiet" : "");
        });
        session.await([&] { return !session.terminal().isCooked(); }, "the raw mode");
        session.type("g" + earlier);
        return session.result();
    };
    EXPECT_EQ(std::to_string('\n'), left("ab\r12").substr(0, 2));
    EXPECT_EQ("-1 quiet", left("\r\r"));
    EXPECT_EQ("-1 quiet", left("1\r2\n3"));
}

// A window that is dragged to its size sends dozens of them.
TEST(TypeAhead, WithAnEnterIsFollowedByQuietHoweverManySignalsComeIn) {
    terminal_session session([] {
        setRawMode();
        open_stream input;
        while (getchar() != 'g') {
            clearerr(stdin);
        }
        sendSignals();
        return readOnce(input);
    });
    session.await([&] { return !session.terminal().isCooked(); }, "the raw mode");
    session.type("g\n");
    session.awaitScreen("no more");
    session.press("x");
    EXPECT_EQ("1:x", session.result());
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
