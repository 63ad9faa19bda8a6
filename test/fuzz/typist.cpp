#include "fuzz/typist.hpp"

#include <sched.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "fuzz/require_same.hpp"

namespace {

typist* current = nullptr;

int unreadBytes() {
    int count = -1;
    ioctl(STDIN_FILENO, FIONREAD, &count);
    return count;
}

}  // namespace

typist::typist(int userSide, typing_t pieces)
    : terminal(userSide), typing(std::move(pieces)), next(typing.begin()), nextTime(next->pause) {
    current = this;
}

typist::~typist() { current = nullptr; }

void typist::passTime(int milliseconds) {
    now += milliseconds;
    typeWhatIsDue();
}

bool typist::awaitPiece(int milliseconds) {
    const bool isLimited = milliseconds >= 0;
    const bool isInTime = next != typing.end() && (!isLimited || nextTime < now + milliseconds);
    requireSame(true, isLimited || isInTime);  // or the menu would wait for ever
    now = isInTime ? std::max(now, nextTime) : now + milliseconds;
    typeWhatIsDue();
    return isInTime;
}

int typist::time() { return current->now; }

void typist::typeWhatIsDue() {
    while (next != typing.end() && nextTime <= now) {
        type(next->bytes);
        ++next;
        nextTime += next == typing.end() ? 0 : next->pause;
    }
}

/// What is written to a terminal can be read a little later, and not always all of it at once.
void typist::type(const std::string& bytes) const {
    const int whole = unreadBytes() + static_cast<int>(bytes.size());
    for (std::size_t written = 0; written < bytes.size();) {
        const ssize_t count = write(terminal, &bytes[written], bytes.size() - written);
        requireSame(true, count >= 0 || errno == EINTR);  // by the fuzzer's own alarm
        written += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    while (unreadBytes() < whole) {
        sched_yield();
    }
}

extern "C" {

int __wrap_epoll_pwait(int instance, epoll_event* events, int most, int milliseconds,
                       const sigset_t*) {
    const int ready = epoll_wait(instance, events, most, 0);
    if (ready != 0 || !current->awaitPiece(milliseconds)) {
        return ready;
    }
    return epoll_wait(instance, events, most, 0);
}

/// The watch that every key leaves open is of no use after this; so many would use up what a
/// process may have.
int __real_epoll_ctl(int instance, int operation, int descriptor, epoll_event* event);
int __wrap_epoll_ctl(int instance, int operation, int descriptor, epoll_event* event) {
    const int result = __real_epoll_ctl(instance, operation, descriptor, event);
    if (operation == EPOLL_CTL_DEL) {
        close(instance);
    }
    return result;
}

}  // extern "C"
