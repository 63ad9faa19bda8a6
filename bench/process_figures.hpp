#pragma once

#include <sys/types.h>

#include <cstdint>

// What a process has used so far, according to proc(5). All throw std::runtime_error if the figure
// is missing there.

/// @return the processor time of the main thread, in nanoseconds, see /proc/PID/schedstat
std::int64_t processorTime(pid_t process);

/// @return the most memory that has been resident, in kilobytes
std::int64_t peakMemory(pid_t process);

std::int64_t writeCalls(pid_t process);
std::int64_t writtenBytes(pid_t process);

std::int64_t openDescriptors(pid_t process);

/// @return true when the process waits for something
bool isAsleep(pid_t process);
