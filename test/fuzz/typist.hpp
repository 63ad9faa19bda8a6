#pragma once

#include "fuzz/typing.hpp"

/// Types on the terminal that is standard input. Nobody waits: time is what the menu spends drawing
/// and waiting for input, and is only counted. There is one at a time; it stands in for
/// epoll_pwait.
class typist {
public:
    /// @param userSide the side of the terminal on which a user types
    typist(int userSide, typing_t pieces);
    ~typist();

    typist(const typist&) = delete;
    typist& operator=(const typist&) = delete;

    /// Lets time pass, and types what is due during it.
    void passTime(int milliseconds);

    /// Lets time pass until the next piece is typed.
    /// @param milliseconds how long at most, or -1
    /// @return false when the time is over
    bool awaitPiece(int milliseconds);

    /// @return the time of the one that there is, in milliseconds
    static int time();

private:
    void typeWhatIsDue();
    void type(const std::string& bytes) const;

    int terminal;
    typing_t typing;
    typing_t::const_iterator next;
    int nextTime;
    int now = 0;
};
