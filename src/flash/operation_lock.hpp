#pragma once

/// Keeps two flashes from being at work on one machine, whoever starts them; see flock(2). Programs
/// that are started while it lives inherit it: it stays locked as long as one of them is at work,
/// or what it leaves behind, whatever becomes of this process.
class operation_lock {
public:
    static constexpr const char* path = "/run/varnmenu.lock";

    /// Where the file cannot be opened there is no lock, and nothing is said.
    /// @throws std::runtime_error when somebody else holds the lock
    operation_lock();
    ~operation_lock();

    operation_lock(const operation_lock&) = delete;
    operation_lock& operator=(const operation_lock&) = delete;

private:
    int file;
};
