#include "package/child_program.hpp"

#include <spawn.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "package/interruption.hpp"
#include "package/system_call.hpp"

namespace {

constexpr int fileDescriptor = 3;
constexpr std::size_t mostOutput = std::size_t{1024} * 1024;
constexpr int deathBySignal = 128;

descriptor memoryFile(const char* name) {
    return {memfd_create(name, MFD_CLOEXEC), "cannot make", "a file in memory"};
}

std::string contentOf(const descriptor& file) {
    checked(lseek(file.get(), 0, SEEK_SET), "cannot read", "a file in memory");
    return file.read(mostOutput);
}

/// The actions and attributes of one posix_spawn(3).
class spawn_setting {
public:
    spawn_setting() {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    }
    ~spawn_setting() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    spawn_setting(const spawn_setting&) = delete;
    spawn_setting& operator=(const spawn_setting&) = delete;

    void give(int ours, int theirs) { posix_spawn_file_actions_adddup2(&actions, ours, theirs); }

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

}  // namespace

child_program::child_program(std::vector<std::string> words, std::string_view file, errors_t errors)
    : answer(memoryFile("answer")), complaints(memoryFile("complaints")) {
    const descriptor content = memoryFile("file");
    content.write(file);
    std::array<int, 2> ends{};
    checked(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), "cannot make",
            "a pair of sockets");
    input = descriptor(ends[0], "", "a socket");
    const descriptor given(ends[1], "", "a socket");
    start(words, given.get(), content.get(), errors);
}

void child_program::start(std::vector<std::string>& words, int given, int file, errors_t kept) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    spawn_setting setting;
    setting.give(given, STDIN_FILENO);
    setting.give(answer.get(), STDOUT_FILENO);
    if (kept == errors_t::kept) {
        setting.give(complaints.get(), STDERR_FILENO);
    }
    setting.give(file, fileDescriptor);
    errno = posix_spawnp(&child, arguments[0], &setting.actions, &setting.attributes,
                         arguments.data(), environ);
    checked(errno == 0 ? 0 : -1, "cannot run", words[0]);
}

child_program::~child_program() {
    if (child > 0) {
        kill(child, SIGTERM);
        waitpid(child, nullptr, 0);
    }
}

void child_program::take(std::string_view bytes) {
    while (isListening && !bytes.empty()) {
        const auto count =
            send(input.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            awaitEvents({{input.get(), POLLOUT, 0}});
        } else {
            isListening = false;
        }
    }
}

int child_program::end() {
    shutdown(input.get(), SHUT_WR);
    // Its end closes the socket; one that closes it before that is a program that ends soon.
    awaitEvents({{input.get(), 0, 0}});
    int status = 0;
    checked(waitpid(child, &status, 0), "cannot wait for", "a program");
    child = -1;
    return WIFSIGNALED(status) ? deathBySignal + WTERMSIG(status) : WEXITSTATUS(status);
}

std::string child_program::output() const { return contentOf(answer); }
std::string child_program::errors() const { return contentOf(complaints); }
