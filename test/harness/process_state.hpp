#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

// What proc(5) tells of a process.

/// The system call that a process is blocked in; number -1 while it runs.
struct system_call_t {
    long number = -1;
    std::array<std::uint32_t, 4> arguments{};  ///< their lower halves
};

system_call_t currentSystemCall(pid_t process);

/// @return true for the system calls that epoll_wait is made of
bool isEpollWait(const system_call_t& call);

/// @return true for the system calls that poll is made of
bool isPoll(const system_call_t& call);

/// How often a process has gone to sleep: a key that it has taken lets it do so once more. A look
/// at its input queue would not do, as the terminal passes keys on with a delay.
std::string timesBlocked(pid_t process);

/// @return false for a process that has ended, waited for or not
bool isAlive(pid_t process);

/// @return true for a process that a signal has stopped
bool isStopped(pid_t process);

/// How many descriptors this process has open, with the one that is needed to count them.
std::ptrdiff_t openDescriptors();
