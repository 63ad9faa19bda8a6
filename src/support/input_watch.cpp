#include "support/input_watch.hpp"

#include <sys/epoll.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr int mostWaits = 10;
constexpr int none = -1;

}  // namespace

input_watch::input_watch(int descriptor)
    : watched(descriptor), instance(epoll_create1(EPOLL_CLOEXEC)) {
    epoll_event readable{};
    readable.events = EPOLLIN;
    if (instance != none && epoll_ctl(instance, EPOLL_CTL_ADD, watched, &readable) != 0) {
        close(instance);
        instance = none;
    }
}

input_watch::~input_watch() {
    if (instance != none) {
        close(instance);
    }
}

bool input_watch::waitReadable(int milliseconds, const std::function<bool()>& settle) const {
    const auto settled = [&settle] {
        bool any = false;
        while (settle && settle()) {
            any = true;
        }
        return any;
    };
    settled();
    epoll_event event{};
    for (int interruptions = 0; interruptions < mostWaits;) {
        const int events = epoll_wait(instance, &event, 1, milliseconds);
        if (events >= 0) {
            return events == 1 && (event.events & EPOLLIN) != 0;
        }
        if (errno != EINTR) {
            break;
        }
        if (!settled()) {
            ++interruptions;
        }
    }
    return false;
}

void input_watch::leaveOpen() {
    if (instance != none) {
        epoll_ctl(instance, EPOLL_CTL_DEL, watched, nullptr);
        instance = none;
    }
}
