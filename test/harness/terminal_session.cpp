#include "harness/terminal_session.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "harness/patience.hpp"
#include "harness/process_state.hpp"

namespace {

constexpr std::uint32_t noTimeLimit = 0xffffffff;
constexpr int lookAgainMilliseconds = 2;
constexpr int millisecondsPerSlowByte = 1;
constexpr int mostLooksAtDying = 500;
constexpr int mostPumpsAtOnce = 256;  // a look at the condition costs more than a pump

}  // namespace

terminal_session::terminal_session(const program_t& program, int rows, int columns)
    : pty(rows, columns), display(rows, columns) {
    start([&program] { execute(program); });
}

terminal_session::terminal_session(const std::function<std::string()>& body, int rows, int columns)
    : pty(rows, columns), display(rows, columns) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("pipe2 failed");
    }
    start([&body, &ends] {
        std::string text;
        try {
            text = body();
        } catch (const std::exception& error) {
            text = std::string("exception: ") + error.what();
        }
        const auto written = write(ends[1], text.data(), text.size());
        std::exit(written == static_cast<ssize_t>(text.size()) ? 0 : 1);
    });
    close(ends[1]);
    resultPipe = ends[0];
}

terminal_session::~terminal_session() {
    // As a user who closes the window: a program that dies of that, and not at once, leaves its
    // line counters behind.
    hangUp();
    for (int looks = 0; !ended && looks < mostLooksAtDying; ++looks) {
        ended = waitpid(child, &waitStatus, WNOHANG) == child;
        poll(nullptr, 0, ended ? 0 : lookAgainMilliseconds);
    }
    if (!ended) {
        kill(child, SIGKILL);
        waitpid(child, &waitStatus, 0);
    }
    if (resultPipe >= 0) {
        close(resultPipe);
    }
}

void terminal_session::start(const std::function<void()>& inChild) {
    std::fflush(stdout);  // or the child would print it once more, on its terminal
    child = fork();
    if (child < 0) {
        throw std::runtime_error("fork failed");
    }
    if (child == 0) {
        resetSignals();
        pty.becomeStandardStreams();
        inChild();
    }
    followed = child;
}

void terminal_session::followChild() {
    const std::string parent = std::to_string(child);
    const auto firstChild = [&] {
        std::ifstream children("/proc/" + parent + "/task/" + parent + "/children");
        children >> followed;
        return !children.fail();
    };
    await(firstChild, "a child of the process");
}

bool terminal_session::pump(int milliseconds) {
    pollfd waiting{pty.master(), POLLIN, 0};
    if (pty.master() < 0 || poll(&waiting, 1, milliseconds) <= 0) {
        return false;
    }
    std::array<char, 4096> bytes;  // a terminal hands no more over at once
    const ssize_t count = read(pty.master(), bytes.data(), isSlow ? 1 : bytes.size());
    if (count <= 0) {
        return false;
    }
    if (isSlow) {
        poll(nullptr, 0, millisecondsPerSlowByte);
    }
    const std::string_view text(bytes.data(), static_cast<std::size_t>(count));
    allOutput += text;
    display.write(text);
    return true;
}

void terminal_session::await(const std::function<bool()>& condition, const std::string& what) {
    const auto limit = patience();
    auto lastSign = std::chrono::steady_clock::now();
    while (!condition()) {
        const auto now = std::chrono::steady_clock::now();
        if (now - lastSign > limit) {
            throw std::runtime_error("waited in vain for " + what + ", the screen is:\n" +
                                     display.text());
        }
        bool isFlowing = pump(lookAgainMilliseconds);
        lastSign = isFlowing ? now : lastSign;
        if (!isFlowing && pty.master() < 0) {
            poll(nullptr, 0, lookAgainMilliseconds);
        }
        for (int more = 0; more < mostPumpsAtOnce && isFlowing; ++more) {
            isFlowing = pump(1);
        }
    }
}

void terminal_session::awaitScreen(std::string_view text) {
    await([&] { return display.contains(text); }, "\"" + std::string(text) + "\"");
}

bool terminal_session::isWaitingForKey() const {
    const system_call_t call = currentSystemCall(followed);
    // In raw mode a read never waits for a key, though it may be seen waiting for a lock.
    const bool isCookedRead =
        call.number == SYS_read && call.arguments[0] == STDIN_FILENO && pty.isCooked();
    const bool isRest = isPoll(call) && call.arguments[1] == 0;  // without descriptors
    return (isEpollWait(call) && call.arguments[3] == noTimeLimit) || isCookedRead || isRest;
}

bool terminal_session::isHeldUpByOutput() const {
    const system_call_t call = currentSystemCall(followed);
    return call.number == SYS_write && call.arguments[0] == STDOUT_FILENO;
}

bool terminal_session::isWaitingForMore() const {
    const system_call_t call = currentSystemCall(followed);
    return isEpollWait(call) && call.arguments[3] != noTimeLimit;
}

/// The looks at a moving process do not happen at once: they have to agree on one sleep.
bool terminal_session::isAtNextKey() const {
    const std::string sleep = timesBlocked(followed);
    return sleep != timesBlockedAtLastKey && isWaitingForKey() && sleep == timesBlocked(followed);
}

void terminal_session::awaitKeyWait() {
    await([this] { return isAtNextKey(); }, "a wait for a key");
    while (pump(0)) {
    }
}

bool terminal_session::awaitKeyWaitOrEnd() {
    await([this] { return isAtNextKey() || hasEnded(); }, "a wait for a key or the end");
    while (pump(0)) {
    }
    return !hasEnded();
}

void terminal_session::type(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(pty.master(), bytes.data(), bytes.size());
        if (count < 0) {
            throw std::runtime_error("cannot type");
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void terminal_session::paste(std::string_view bytes) {
    const int flags = fcntl(pty.master(), F_GETFL);
    fcntl(pty.master(), F_SETFL, flags | O_NONBLOCK);
    const auto pasteMore = [&] {
        const ssize_t count = write(pty.master(), bytes.data(), bytes.size());
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        return bytes.empty();
    };
    await(pasteMore, "the terminal to take all that is pasted");
    fcntl(pty.master(), F_SETFL, flags);
}

void terminal_session::press(std::string_view keys) {
    awaitKeyWait();
    timesBlockedAtLastKey = timesBlocked(followed);
    type(keys);
}

int terminal_session::awaitEnd() {
    await([&] { return hasEnded(); }, "the end of the process");
    while (pump(0)) {
    }
    if (!ended) {
        waitpid(child, &waitStatus, 0);
        ended = true;
    }
    return waitStatus;
}

std::string terminal_session::result() {
    awaitEnd();
    std::string text;
    std::array<char, 4096> bytes{};
    for (ssize_t count = 0; (count = read(resultPipe, bytes.data(), bytes.size())) > 0;) {
        text.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return text;
}

bool terminal_session::hasEnded() const { return !isAlive(child); }

void terminal_session::signal(int number) const { kill(followed, number); }

void terminal_session::resize(int rows, int columns) {
    pty.resize(rows, columns);
    display.resize(rows, columns);
}

void terminal_session::hangUp() { pty.hangUp(); }
