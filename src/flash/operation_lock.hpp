#pragma once

/// Lets only one flash at a time run on a server, whoever starts it; see flock(2). Programs that
/// are started while it lives inherit it: it stays locked until they, and all processes that they
/// leave running, have ended, even if this process ends earlier.
class operation_lock {
public:
    static constexpr const char* path = "/run/varnmenu.lock";

    /// If the file cannot be opened, there is no lock and no message.
    /// @throws std::runtime_error when somebody else holds the lock
    operation_lock();
    ~operation_lock();

    operation_lock(const operation_lock&) = delete;
    operation_lock& operator=(const operation_lock&) = delete;

private:
    int file;
};
