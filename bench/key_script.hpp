#pragma once

#include <optional>
#include <string>
#include <vector>

#include "timed_session.hpp"

/// A round of keys that is pressed again and again; each key moves the highlight of every
/// contestant. It also knows how many bytes one contestant prints for each key.
class key_script {
public:
    /// Learns the numbers of bytes from the contestant itself, in two rounds: the first round
    /// starts with nothing or the first entry highlighted, all others where a round ends.
    /// @param keysInSession how many keys will be pressed in a session: no more keys are learned
    key_script(const contestant_t& contestant, std::vector<std::string> keys,
               std::size_t keysInSession);

    /// Presses a key and waits for the drawing; a lost key is pressed again.
    /// @param index how many keys have been pressed in this session before
    /// @return microseconds from the key to the last byte
    /// @throws std::runtime_error when keys keep getting lost
    double press(timed_session& session, std::size_t index);

    /// @return how many bytes are printed at the start
    std::size_t firstFrame() const { return frameBytes; }

    /// @return how many times a key had to be pressed again so far
    int lostKeys() const { return lost; }

private:
    std::vector<std::string> round;
    std::size_t frameBytes;
    std::vector<std::size_t> bytes;  ///< for each key of both rounds
    int lost = 0;
};

/// Six lines down and up again.
std::vector<std::string> arrowKeys();

/// The numbers of all entries, never the same one twice in a row.
std::vector<std::string> digitKeys();

/// @return the size of the first frame: all bytes until none arrives for 200 ms
std::size_t firstFrameBytes(const contestant_t& contestant);
