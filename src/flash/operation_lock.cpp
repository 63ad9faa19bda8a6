#include "flash/operation_lock.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

namespace {

constexpr int none = -1;
constexpr mode_t forOwner = 0600;

}  // namespace

// Not closed on exec: that the core program inherits it is what it is for. Nor followed is a link,
// which would let another file be made.
operation_lock::operation_lock() : file(open(path, O_RDWR | O_CREAT | O_NOFOLLOW, forOwner)) {
    if (file != none && flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        close(file);
        throw std::runtime_error("Another flash or reboot is at work on this server");
    }
}

// Closed, not unlocked: that would unlock it for all who have inherited it.
operation_lock::~operation_lock() {
    if (file != none) {
        close(file);
    }
}
