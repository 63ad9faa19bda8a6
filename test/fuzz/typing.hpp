#pragma once

#include <string>
#include <vector>

/// What arrives on the terminal at once, and how long after the piece before it.
struct piece_t {
    int pause;  ///< in milliseconds
    std::string bytes;
};

using typing_t = std::vector<piece_t>;

/// Room enough for what one terminal keeps unread.
inline constexpr std::size_t longestTyping = 1000;

/// How long a drawing of the menu takes, in milliseconds: what arrives during it is typed ahead.
inline constexpr int drawingTime = 20;

/// How long an operation takes, in milliseconds.
inline constexpr int operationTime = 700;

/// @param text pieces, each after a "|"; the first byte of a piece is its pause
/// @return the pieces, and the last ones that lead to a warning, end it, or the wait after an
/// operation, and end the program
typing_t typingOf(const std::string& text);
