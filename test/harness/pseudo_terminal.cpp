#include "harness/pseudo_terminal.hpp"

#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <initializer_list>
#include <system_error>

namespace {

void check(bool succeeded, const char* what) {
    if (!succeeded) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

void closeAndForget(int& descriptor) {
    if (descriptor >= 0) {
        close(descriptor);
        descriptor = -1;
    }
}

}  // namespace

pseudo_terminal::pseudo_terminal(int rows, int columns) {
    winsize size{};
    size.ws_row = static_cast<unsigned short>(rows);
    size.ws_col = static_cast<unsigned short>(columns);
    check(openpty(&masterSide, &slaveSide, nullptr, nullptr, &size) == 0, "openpty");
}

pseudo_terminal::~pseudo_terminal() { hangUp(); }

void pseudo_terminal::becomeStandardStreams() const {
    setsid();
    ioctl(slaveSide, TIOCSCTTY, 0);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        dup2(slaveSide, descriptor);
    }
    close(slaveSide);
    close(masterSide);
}

termios pseudo_terminal::attributes() const {
    termios attributes{};
    check(tcgetattr(slaveSide, &attributes) == 0, "tcgetattr");
    return attributes;
}

bool pseudo_terminal::isCooked() const {
    constexpr tcflag_t modes = ICANON | ECHO | ISIG;
    return (attributes().c_lflag & modes) == modes;
}

void pseudo_terminal::resize(int rows, int columns) const {
    winsize size{};
    size.ws_row = static_cast<unsigned short>(rows);
    size.ws_col = static_cast<unsigned short>(columns);
    check(ioctl(masterSide, TIOCSWINSZ, &size) == 0, "TIOCSWINSZ");
}

void pseudo_terminal::hangUp() {
    closeAndForget(slaveSide);
    closeAndForget(masterSide);
}
