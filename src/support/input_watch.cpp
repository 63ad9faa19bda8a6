#include "support/input_watch.hpp"

#include <sys/epoll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace {

constexpr int mostWaits = 10;
constexpr int noInstance = -1;

}  // namespace

input_watch::input_watch(int descriptor)
    : watched(descriptor), instance(epoll_create1(EPOLL_CLOEXEC)) {
    epoll_event readable{};
    readable.events = EPOLLIN;
    if (instance != noInstance && epoll_ctl(instance, EPOLL_CTL_ADD, watched, &readable) != 0) {
        close(instance);
        instance = noInstance;
    }
}

input_watch::~input_watch() {
    if (instance != noInstance) {
        close(instance);
    }
}

bool input_watch::waitReadable(int milliseconds, const std::function<bool()>& settle) const {
    sigset_t nothingBlocked;
    sigemptyset(&nothingBlocked);
    settle();
    epoll_event event{};
    for (int interruptions = 0; interruptions < mostWaits;) {
        const int events = epoll_pwait(instance, &event, 1, milliseconds, &nothingBlocked);
        if (events >= 0) {
            return events == 1 && (event.events & EPOLLIN) != 0;
        }
        if (errno != EINTR) {
            break;
        }
        if (!settle()) {
            ++interruptions;
        }
    }
    return false;
}

void input_watch::leaveOpen() {
    if (instance != noInstance) {
        epoll_ctl(instance, EPOLL_CTL_DEL, watched, nullptr);
        instance = noInstance;
    }
}
