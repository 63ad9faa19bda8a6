#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "contestants.hpp"
#include "harness/pseudo_terminal.hpp"

/// A program on a terminal of its own, 80 columns by 25 rows, TERM=linux. What it prints is counted
/// and thrown away. Ended at the end.
class timed_session {
public:
    /// Starts the program: the clock runs from right before that.
    explicit timed_session(const contestant_t& program);
    ~timed_session();

    timed_session(const timed_session&) = delete;
    timed_session& operator=(const timed_session&) = delete;

    /// Types a key: the clock runs from right before that.
    void press(std::string_view key);

    /// Waits for so many bytes.
    /// @return microseconds from the start of the clock to the last of them; nothing when they have
    /// not come, and none has for a second
    /// @throws std::runtime_error when there are more
    std::optional<double> awaitBytes(std::size_t count);

    /// The same at the start of the program, in milliseconds.
    /// @throws std::runtime_error when the bytes do not come, too
    double awaitFrame(std::size_t count);

    /// Waits for the first byte, and then until none comes for some time.
    /// @param quietMilliseconds this time
    /// @return how many bytes have come; 0 when none did within a second
    std::size_t countBytes(int quietMilliseconds);

    /// Waits for a pause of 3 ms after the last byte, and until the program sleeps: whoever throws
    /// away what was typed too early has done so then.
    /// @throws std::runtime_error when more bytes have come, or it does not sleep within a second
    void settle();

    pid_t process() const { return child; }

private:
    std::size_t readSome(int milliseconds);

    pseudo_terminal pty;
    pid_t child = -1;
    std::chrono::steady_clock::time_point clockStart;
    std::chrono::steady_clock::time_point lastByte;
};
