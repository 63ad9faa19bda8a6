#pragma once

/// Follows typed bytes, one by one, to know whether an escape sequence is unfinished. A serial line
/// delivers the bytes of one arrow key with gaps.
class escape_sequence {
public:
    static constexpr char start = '\x1b';  ///< ESC

    void add(char byte);

    /// @return true after ESC alone, after ESC "O", and after ESC "[" until its final byte, 64 to
    /// 126; any other sequence is whole with its second byte
    bool isUnfinished() const { return state != state_t::whole; }

private:
    enum class state_t { whole, escape, ss3, csi };

    state_t state = state_t::whole;
};
