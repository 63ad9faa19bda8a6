#pragma once

#include <spawn.h>

/// Owns the file actions of one posix_spawn(3), none at first.
class spawn_file_actions {
public:
    spawn_file_actions() = default;
    ~spawn_file_actions();

    spawn_file_actions(const spawn_file_actions&) = delete;
    spawn_file_actions& operator=(const spawn_file_actions&) = delete;

    /// Gives the child the null device as standard output and standard error. If the actions
    /// cannot be made, the child keeps its output. To be called once.
    /// @param openFlags as for open(2)
    void openNullDevice(int openFlags);

    /// @return what posix_spawn takes; null if there are no actions
    const posix_spawn_file_actions_t* get() const { return initialised ? &actions : nullptr; }

private:
    posix_spawn_file_actions_t actions{};
    bool initialised = false;
};
