#include "harness/program.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace {

/// A file in memory that collects an output.
class collector {
public:
    collector() : file(memfd_create("output", MFD_CLOEXEC)) {
        if (file < 0) {
            throw std::runtime_error("memfd_create failed");
        }
    }
    ~collector() { close(file); }

    collector(const collector&) = delete;
    collector& operator=(const collector&) = delete;

    void become(int descriptor) const { dup2(file, descriptor); }

    std::string text() const {
        std::string all(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
        const ssize_t count = pread(file, all.data(), all.size(), 0);
        if (count != static_cast<ssize_t>(all.size())) {
            throw std::runtime_error("pread failed");
        }
        return all;
    }

private:
    int file;
};

}  // namespace

std::vector<char*> nullTerminated(std::vector<std::string>& texts) {
    std::vector<char*> list;
    for (std::string& text : texts) {
        list.push_back(text.data());
    }
    list.push_back(nullptr);
    return list;
}

std::ostream& operator<<(std::ostream& stream, const outcome_t& outcome) {
    return stream << outcome.status << "\n" << outcome.output << outcome.errors;
}

outcome_t outcomeOf(const program_t& program) {
    const collector output;
    const collector errors;
    const pid_t child = fork();
    if (child == 0) {
        const int nothing = open("/dev/null", O_RDONLY);
        dup2(nothing, STDIN_FILENO);
        output.become(STDOUT_FILENO);
        errors.become(STDERR_FILENO);
        resetSignals();
        execute(program);
    }
    int status = -1;
    if (child < 0 || waitpid(child, &status, 0) != child) {
        throw std::runtime_error("cannot run " + program.path);
    }
    return {WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), output.text(),
            errors.text()};
}

void resetSignals() {
    for (int number = 1; number < NSIG; ++number) {
        std::signal(number, SIG_DFL);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void execute(const program_t& program) {
    std::vector<std::string> arguments = program.arguments;
    std::vector<std::string> environment;
    for (const auto& [name, value] : program.environment) {
        environment.push_back(name + "=" + value);
    }
    // What the tests have open is not to be seen by the program.
    close_range(STDERR_FILENO + 1, ~0U, 0);
    if (chdir(program.directory.c_str()) == 0 && (program.user == 0 || setuid(program.user) == 0)) {
        execve(program.path.c_str(), nullTerminated(arguments).data(),
               nullTerminated(environment).data());
    }
    _exit(127);
}
