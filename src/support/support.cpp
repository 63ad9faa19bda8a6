#include "support/support.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>

#include "support/blocked_signals.hpp"
#include "support/input_watch.hpp"
#include "support/longest_command.hpp"
#include "support/spawn_file_actions.hpp"
#include "support/terminal_keeper.hpp"
#include "support/word_vector.hpp"

namespace {

constexpr std::size_t longestEnvironment = 4096;
constexpr int millisecondsPerSecond = 1000;
constexpr long nanosecondsPerMillisecond = 1'000'000;

std::runtime_error commandFailure() {
    return std::runtime_error("Command cannot be executed properly");
}

/// Four variables, so that a flash does not depend on the rest of root's environment.
std::string childEnvironment() {
    const char* path = std::getenv("PATH");
    const char* term = std::getenv("TERM");
    std::array<char, longestEnvironment> directory{};
    if (path == nullptr || term == nullptr ||
        getcwd(directory.data(), directory.size()) == nullptr) {
        return {};
    }
    return std::string("PATH=") + path + ";TERM=" + term + ";PWD=" + directory.data() +
           ";LANG=en_US.UTF-8";
}

/// A child that is stopped and continued has not ended: only its end is an answer.
int exitStatus(pid_t child) {
    for (;;) {
        int status = -1;
        const bool isReported = waitpid(child, &status, 0) != -1;
        if (isReported && WIFEXITED(status)) {
            return WEXITSTATUS(status);
        }
        if (isReported ? WIFSIGNALED(status) : errno != EINTR) {
            throw commandFailure();
        }
    }
}

}  // namespace

support::support() : environment(childEnvironment()) {
    if (environment.empty() || environment.size() > longestEnvironment) {
        throw std::invalid_argument("Environment variables cannot be initialized");
    }
}

int support::runCommand(const std::string& command, bool showOutput) {
    return runProgram(command, showOutput ? output_t::shown : output_t::unwritable);
}

int support::runProgram(const std::string& command, output_t output) const {
    if (command.empty() || command.size() > longestCommand) {
        throw commandFailure();
    }
    const word_vector variables(environment, ';');
    // No quoting and no shell: a package's texts cannot start another program.
    const word_vector arguments(command, ' ');
    if (arguments.empty()) {
        throw commandFailure();
    }
    spawn_file_actions actions;
    if (output != output_t::shown) {
        // Opened read-only, so that the child's writes fail instead of vanishing.
        actions.openNullDevice(output == output_t::discarded ? O_WRONLY : O_RDONLY);
    }
    // So that earlier output appears before that of the child.
    std::fflush(stdout);
    const terminal_keeper terminal;
    pid_t child = 0;
    if (posix_spawnp(&child, *arguments.data(), actions.get(), nullptr, arguments.data(),
                     variables.data()) != 0) {
        throw commandFailure();
    }
    return exitStatus(child);
}

bool support::programExists(const std::string& name) {
    // A which(1) that is a shell script says "no" when it cannot write its answer, and the
    // unwritable null device is just such a case: ask that one again with a writable one.
    const std::string command = "which " + name;
    return runCommand(command, false) == 0 || runProgram(command, output_t::discarded) == 0;
}

int support::clearScreen() { return runCommand("clear", true); }

void support::waitForEnter(const std::string& message) {
    trace(message);
    // Even a stop that ends before the wait begins has to interrupt it, because the terminal's mode
    // may have changed.
    const blocked_signals untilTheWait{SIGCONT};
    const input_watch keyboard(STDIN_FILENO);
    while (awaitByte(keyboard) != '\n') {
    }
    enters.add();
}

void support::delay(int unit, int amount) {
    if (amount <= 0) {
        return;
    }
    timespec interval{};
    if (unit == seconds) {
        interval.tv_sec = amount;
    } else if (unit == milliseconds) {  // below a second: whole seconds have their own unit
        interval.tv_nsec = amount % millisecondsPerSecond * nanosecondsPerMillisecond;
    }
    // A stop and its continuation would cut the sleep short: they wait for its end.
    const blocked_signals untilSlept{SIGTSTP};
    if (nanosleep(&interval, &interval) != 0) {
        const auto shown =
            static_cast<std::int32_t>(std::int64_t{amount} * (unit == milliseconds ? 1000 : 1));
        throw std::runtime_error("Cannot complete delay of seconds: " + std::to_string(shown));
    }
}

bool support::fileExists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

std::string support::fileName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);  // without a slash: npos + 1 is the start
}

std::string support::newLines(int count) {
    std::string lines;
    lines.resize(static_cast<std::size_t>(std::max(count, 0)), '\n');
    return lines;
}

void support::removeChar(std::string& text, char character) { std::erase(text, character); }

void support::removeQuotes(std::string& text) { removeChar(text, '"'); }

void support::removeLineEnds(std::string& text) {
    removeChar(text, '\r');
    removeChar(text, '\n');
}
