#include "timed_session.hpp"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include "harness/program.hpp"
#include "process_figures.hpp"

namespace {

constexpr int rows = 25;
constexpr int columns = 80;
constexpr double microsecondsPerMillisecond = 1000;
constexpr int patienceMilliseconds = 1000;
constexpr std::size_t mostBytesAtOnce = 16'384;
constexpr std::chrono::milliseconds pauseBeforeKey(3);

std::string variable(const char* name) {
    const char* text = std::getenv(name);
    return std::string(name) + "=" + (text == nullptr ? "" : text);
}

void check(int error, const std::string& what) {
    if (error != 0) {
        throw std::runtime_error("cannot start " + what);
    }
}

/// Gives the child its own session; the terminal it opens becomes its controlling terminal.
class spawn_plan {
public:
    spawn_plan(const std::string& terminal, const std::string& directory) {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, terminal.c_str(), O_RDWR, 0);
        posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDERR_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    }
    ~spawn_plan() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }

    spawn_plan(const spawn_plan&) = delete;
    spawn_plan& operator=(const spawn_plan&) = delete;

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

}  // namespace

timed_session::timed_session(const contestant_t& program) : pty(rows, columns) {
    for (const int side : {pty.master(), pty.slave()}) {
        fcntl(side, F_SETFD, FD_CLOEXEC);
    }
    const spawn_plan plan(ptsname(pty.master()), program.directory);
    std::vector<std::string> words = program.command;
    std::vector<std::string> variables{variable("PATH"), variable("HOME"), "TERM=linux"};
    const std::vector<char*> arguments = nullTerminated(words);
    const std::vector<char*> environment = nullTerminated(variables);
    clockStart = std::chrono::steady_clock::now();
    check(posix_spawn(&child, arguments.front(), &plan.actions, &plan.attributes, arguments.data(),
                      environment.data()),
          program.name);
}

timed_session::~timed_session() {
    kill(-child, SIGKILL);
    waitpid(child, nullptr, 0);
}

void timed_session::press(std::string_view key) {
    clockStart = std::chrono::steady_clock::now();
    if (write(pty.master(), key.data(), key.size()) != static_cast<ssize_t>(key.size())) {
        throw std::runtime_error("cannot type");
    }
}

/// @return 0 if the time is over or the program has ended
std::size_t timed_session::readSome(int milliseconds) {
    pollfd waiting{pty.master(), POLLIN, 0};
    if (poll(&waiting, 1, milliseconds) <= 0) {
        return 0;
    }
    std::array<char, mostBytesAtOnce> bytes;
    const ssize_t count = read(pty.master(), bytes.data(), bytes.size());
    lastByte = std::chrono::steady_clock::now();
    return count < 0 ? 0 : static_cast<std::size_t>(count);
}

std::optional<double> timed_session::awaitBytes(std::size_t count) {
    std::size_t known = 0;
    while (known < count) {
        const std::size_t more = readSome(patienceMilliseconds);
        if (more == 0) {
            return std::nullopt;
        }
        known += more;
    }
    if (known > count) {
        throw std::runtime_error("more bytes than there were at first");
    }
    return std::chrono::duration<double, std::micro>(lastByte - clockStart).count();
}

double timed_session::awaitFrame(std::size_t count) {
    const std::optional<double> time = awaitBytes(count);
    if (!time) {
        throw std::runtime_error("no first frame");
    }
    return *time / microsecondsPerMillisecond;
}

std::size_t timed_session::countBytes(int quietMilliseconds) {
    std::size_t known = 0;
    for (std::size_t more = readSome(patienceMilliseconds); more > 0;
         more = readSome(quietMilliseconds)) {
        known += more;
    }
    return known;
}

void timed_session::settle() {
    using std::chrono::milliseconds;
    const auto rest = lastByte + pauseBeforeKey - std::chrono::steady_clock::now();
    const auto wait = std::max(std::chrono::ceil<milliseconds>(rest), milliseconds(0));
    if (readSome(static_cast<int>(wait.count())) != 0) {
        throw std::runtime_error("more bytes than there were at first");
    }
    for (int looks = 0; !isAsleep(child); ++looks) {
        if (looks == patienceMilliseconds) {
            throw std::runtime_error("a program that does not wait for a key");
        }
        poll(nullptr, 0, 1);
    }
}
