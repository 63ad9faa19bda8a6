#pragma once

#include <optional>
#include <string>
#include <vector>

#include "timed_session.hpp"

/// A round of keys that is pressed over and over again, each of which moves the highlight of every
/// contestant, and how many bytes one of them prints for each.
class key_script {
public:
    /// Learns the bytes from the contestant itself, in two rounds: the first one starts from where
    /// nothing or the first entry is highlighted, all others from where a round ends.
    /// @param keysInSession how many keys will be pressed in a session: no more than these are
    /// learned
    key_script(const contestant_t& contestant, std::vector<std::string> keys,
               std::size_t keysInSession);

    /// Presses a key and waits for the drawing; a key that got lost is pressed again.
    /// @param index how many keys have been pressed in this session before
    /// @return microseconds from the key to the last byte
    /// @throws std::runtime_error when keys get lost again and again
    double press(timed_session& session, std::size_t index);

    /// @return how many bytes are printed at the start
    std::size_t firstFrame() const { return frameBytes; }

    /// @return how often a key had to be pressed again so far
    int lostKeys() const { return lost; }

private:
    std::vector<std::string> round;
    std::size_t frameBytes;
    std::vector<std::size_t> bytes;  ///< for each key of both rounds
    int lost = 0;
};

/// Six lines down and up again.
std::vector<std::string> arrowKeys();

/// The numbers of all entries, never one twice in a row.
std::vector<std::string> digitKeys();

/// @return the size of the first frame: what has come when nothing comes for 200 ms
std::size_t firstFrameBytes(const contestant_t& contestant);
