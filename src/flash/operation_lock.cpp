#include "flash/operation_lock.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

namespace {

constexpr int noFile = -1;
constexpr mode_t forOwner = 0600;

}  // namespace

// Not closed on exec, because the core program has to inherit it. Links are not followed, because
// one could make open(2) create another file.
operation_lock::operation_lock() : file(open(path, O_RDWR | O_CREAT | O_NOFOLLOW, forOwner)) {
    if (file != noFile && flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        close(file);
        throw std::runtime_error("Another flash or reboot is at work on this server");
    }
}

// Closed, not unlocked: unlocking would take the lock from all processes that have inherited it.
operation_lock::~operation_lock() {
    if (file != noFile) {
        close(file);
    }
}
