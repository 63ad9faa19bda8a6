#include "harness/test_surroundings.hpp"

#include <gtest/gtest.h>
#include <stdio_ext.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

inside_package::inside_package(const package_folder& package)
    : directory(std::filesystem::current_path()), path(std::getenv("PATH")) {
    std::filesystem::current_path(package.tool());
    setenv("PATH", package.programs().c_str(), 1);
    setenv("TERM", "xterm", 1);
}

inside_package::~inside_package() {
    std::filesystem::current_path(directory);
    setenv("PATH", path.c_str(), 1);
}

typed_input::typed_input(const std::string& bytes) : original(dup(STDIN_FILENO)) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0 ||
        write(ends[1], bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
        throw std::runtime_error("cannot make standard input");
    }
    close(ends[1]);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    __fpurge(stdin);
    clearerr(stdin);
}

typed_input::~typed_input() {
    dup2(original, STDIN_FILENO);
    close(original);
    __fpurge(stdin);
}

captured_output::captured_output() { testing::internal::CaptureStdout(); }

captured_output::~captured_output() {
    if (active) {
        testing::internal::GetCapturedStdout();
    }
}

std::string captured_output::text() {
    active = false;
    return testing::internal::GetCapturedStdout();
}

void setRawMode() {
    termios attributes{};
    tcgetattr(STDIN_FILENO, &attributes);
    attributes.c_lflag &= ~static_cast<tcflag_t>(ISIG | ICANON | ECHO);
    attributes.c_cc[VTIME] = 0;
    attributes.c_cc[VMIN] = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &attributes);
}
