#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "contestants.hpp"
#include "harness/pseudo_terminal.hpp"

/// A program on its own terminal, 80 columns by 25 rows, TERM=linux. Its output is counted and
/// discarded. The destructor ends it.
class timed_session {
public:
    /// Starts the program; the clock runs from just before that.
    explicit timed_session(const contestant_t& program);
    ~timed_session();

    timed_session(const timed_session&) = delete;
    timed_session& operator=(const timed_session&) = delete;

    /// Types a key; the clock runs from just before that.
    void press(std::string_view key);

    /// Waits for so many bytes.
    /// @return microseconds from the start of the clock to the last of them; nothing if some are
    /// missing and none has arrived for a second
    /// @throws std::runtime_error when there are more
    std::optional<double> awaitBytes(std::size_t count);

    /// The same at the start of the program, in milliseconds.
    /// @throws std::runtime_error also when bytes are missing
    double awaitFrame(std::size_t count);

    /// Waits for the first byte, and then until none arrives for quietMilliseconds.
    /// @return how many bytes have arrived; 0 if none did within a second
    std::size_t countBytes(int quietMilliseconds);

    /// Waits for a pause of 3 ms after the last byte, and until the program sleeps: a program that
    /// discards what was typed too early has done so by then.
    /// @throws std::runtime_error when more bytes arrive, or it does not sleep within a second
    void settle();

    pid_t process() const { return child; }

private:
    std::size_t readSome(int milliseconds);

    pseudo_terminal pty;
    pid_t child = -1;
    std::chrono::steady_clock::time_point clockStart;
    std::chrono::steady_clock::time_point lastByte;
};
