#include "term/screen_watch.hpp"

#include <csignal>

namespace {

volatile std::sig_atomic_t changed = 0;

void setAction(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigaction(SIGWINCH, &action, nullptr);
    sigaction(SIGCONT, &action, nullptr);
}

}  // namespace

screen_watch::screen_watch() {
    sigset_t watched;
    sigemptyset(&watched);
    sigaddset(&watched, SIGWINCH);
    sigaddset(&watched, SIGCONT);
    sigprocmask(SIG_BLOCK, &watched, &previous);
    setAction([](int) { changed = 1; });
}

screen_watch::~screen_watch() {
    setAction(SIG_DFL);
    changed = 0;
    sigprocmask(SIG_SETMASK, &previous, nullptr);
}

bool screen_watch::hasChanged() {
    const bool hadChanged = changed != 0;
    changed = 0;
    return hadChanged;
}
