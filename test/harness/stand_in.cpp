// Stands in for the core program and for the programs on the PATH. It records how it is run in
// "runs.log" of the package folder and then does what the file "NAME.steps" beside it says, a line
// each:
//
//   print TEXT     prints the text and a line feed, as printf(1) would its format
//   look           answers like which(1); it does not matter whether the answer can be written
//   look strictly  the same, but fails when it cannot be written, as a shell script does
//   await FILE     waits until somebody writes to this fifo of the package folder
//   show           prints the file named by the first argument; exit status 1 when it cannot
//   mode deaf      leaves the terminal with echo, and without line ends from ENTER
//   mode cooked    leaves the terminal with line editing and signal keys
//   daemon FILE    leaves a child behind that does the same
//   steal          leaves the terminal to a process group of a child that stays behind
//   close          closes its standard streams
//   swallow        reads standard input up to its end
//   flood NUMBER   prints this many million bytes
//   kill NUMBER    sends itself a signal
//   exit NUMBER    ends with this status

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

namespace {

class recorder {
public:
    explicit recorder(const fs::path& log) : file(log, std::ios::app) {}

    void note(const std::string& kind, const std::string& value) {
        file << getpid() << ' ' << kind << ' ' << value << std::endl;
    }

private:
    std::ofstream file;
};

std::string valueOf(const std::string& statusKey) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(statusKey + ":\t")) {
            return line.substr(statusKey.size() + 2);
        }
    }
    return "0";
}

std::string accessMode(int descriptor) {
    switch (fcntl(descriptor, F_GETFL) & O_ACCMODE) {
        case O_RDONLY:
            return "r";
        case O_WRONLY:
            return "w";
        default:
            return "rw";
    }
}

/// Taken before anything is opened here.
std::map<int, std::string> openDescriptors() {
    std::map<int, std::string> open;
    constexpr int most = 256;
    for (int number = 0; number < most; ++number) {
        std::error_code none;
        const auto path = fs::read_symlink("/proc/self/fd/" + std::to_string(number), none);
        if (!none) {
            open[number] = accessMode(number) + " " + path.string();
        }
    }
    return open;
}

std::string unescaped(const std::string& text) {
    const std::size_t position = text.find("\\033");
    if (position == std::string::npos) {
        return text;
    }
    return text.substr(0, position) + '\x1b' + unescaped(text.substr(position + 4));
}

bool look(const fs::path& folder, const char* wanted, bool strictly) {
    if (wanted == nullptr || access((folder / wanted).c_str(), X_OK) != 0) {
        return false;
    }
    std::cout << (folder / wanted).string() << std::endl;
    return std::cout.good() || !strictly;
}

bool show(const char* path) {
    std::ifstream document(path == nullptr ? "" : path);
    if (!document) {
        return false;
    }
    std::cout << document.rdbuf() << std::flush;
    return std::cout.good();
}

void leaveMode(const std::string& mode) {
    termios attributes{};
    tcgetattr(STDIN_FILENO, &attributes);
    attributes.c_lflag |= ECHO;
    if (mode == "deaf") {
        attributes.c_iflag &= ~static_cast<tcflag_t>(ICRNL);
    } else {
        attributes.c_lflag |= ICANON | ISIG;
    }
    tcsetattr(STDIN_FILENO, TCSANOW, &attributes);
}

/// The child is gone when the terminal itself is. It looks for that, as a signal may be blocked,
/// and the terminal's foreground is taken from it.
void leaveTerminalToAnotherGroup() {
    std::signal(SIGTTOU, SIG_IGN);
    const pid_t child = fork();
    if (child == 0) {
        pollfd hangUp{STDIN_FILENO, 0, 0};
        poll(&hangUp, 1, -1);
        _exit(0);
    }
    setpgid(child, child);
    tcsetpgrp(STDIN_FILENO, child);
}

/// Over and over the same line, as scrolling is what takes an emulator most of its time.
void flood(int millions) {
    const std::string line = "\r" + std::string(79, 'x');
    for (int lines = 0; lines < millions * 12'500; ++lines) {
        std::cout << line;
    }
    std::cout << "\nthat was all" << std::endl;
}

/// @return the exit status, or -1 to go on
int step(const std::string& line, const fs::path& self, char** arguments) {
    const std::string word = line.substr(0, line.find(' '));
    const std::string rest = line.size() > word.size() ? line.substr(word.size() + 1) : "";
    const auto awaitWriter = [&] {
        std::string ignored;
        std::ifstream fifo(self.parent_path().parent_path() / rest);
        std::getline(fifo, ignored);
    };
    if (word == "print") {
        std::cout << unescaped(rest) << std::endl;
    } else if (word == "look") {
        return look(self.parent_path(), arguments[1], rest == "strictly") ? 0 : 1;
    } else if (word == "await") {
        awaitWriter();
    } else if (word == "daemon") {
        if (fork() == 0) {
            awaitWriter();
            _exit(0);
        }
    } else if (word == "show") {
        return show(arguments[1]) ? 0 : 1;
    } else if (word == "mode") {
        leaveMode(rest);
    } else if (word == "steal") {
        leaveTerminalToAnotherGroup();
    } else if (word == "close") {
        close(STDIN_FILENO);
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
    } else if (word == "swallow") {
        std::cin.ignore(std::numeric_limits<std::streamsize>::max());
    } else if (word == "flood") {
        flood(std::stoi(rest));
    } else if (word == "kill") {
        std::signal(std::stoi(rest), SIG_DFL);  // whatever a sanitizer has made of it
        raise(std::stoi(rest));
    } else if (word == "exit") {
        return std::stoi(rest);
    }
    return -1;
}

}  // namespace

int main(int, char** arguments, char** environment) {
    const auto descriptors = openDescriptors();
    const fs::path self = fs::read_symlink("/proc/self/exe");
    recorder log(self.parent_path().parent_path() / "runs.log");
    log.note("run", self.filename());
    for (char** argument = arguments; *argument != nullptr; ++argument) {
        log.note("argument", *argument);
    }
    for (char** variable = environment; *variable != nullptr; ++variable) {
        log.note("environment", *variable);
    }
    for (const auto& [number, what] : descriptors) {
        log.note("descriptor", std::to_string(number) + " " + what);
    }
    log.note("ignored", valueOf("SigIgn"));
    log.note("blocked", valueOf("SigBlk"));

    int status = 0;
    std::ifstream steps(self.string() + ".steps");
    for (std::string line; std::getline(steps, line);) {
        status = step(line, self, arguments);
        if (status >= 0) {
            break;
        }
    }
    log.note("ended", std::to_string(status));
    return status < 0 ? 0 : status;
}
