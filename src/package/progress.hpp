#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// Tells on standard error, if that is a terminal, how far a long step is.
class progress {
public:
    /// @param what is read; made printable
    /// @param size of all of it in bytes
    /// @param interval before it tells for the first time, and between two times
    progress(const std::string& what, std::uint64_t size,
             std::chrono::milliseconds interval = std::chrono::seconds(1));
    ~progress();

    progress(const progress&) = delete;
    progress& operator=(const progress&) = delete;

    /// So many bytes more are done.
    void add(std::uint64_t bytes);

private:
    using clock_t = std::chrono::steady_clock;

    std::string name;
    std::uint64_t all;
    std::uint64_t done = 0;
    bool isWatched;
    bool isShown = false;
    std::chrono::milliseconds wait;
    clock_t::time_point next;
};
