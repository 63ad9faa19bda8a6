#include "term/screen_watch.hpp"

#include <csignal>

namespace {

volatile std::sig_atomic_t changed = 0;

void setAction(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;  // a drawing is not to be cut short
    sigaction(SIGWINCH, &action, nullptr);
    sigaction(SIGCONT, &action, nullptr);
}

}  // namespace

screen_watch::screen_watch() {
    changed = 0;
    setAction([](int) { changed = 1; });
}

screen_watch::~screen_watch() {
    setAction(SIG_DFL);
    changed = 0;
}

bool screen_watch::hasChanged() {
    if (changed == 0) {
        return false;  // and what comes in from here on is left to the next call
    }
    changed = 0;
    return true;
}
