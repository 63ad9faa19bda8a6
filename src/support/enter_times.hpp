#pragma once

#include <chrono>
#include <optional>

/// Knows when ENTER was last seen: tells a press of it from the repeats of a held key and from the
/// knocking of an impatient user.
class enter_times {
public:
    using clock_t = std::chrono::steady_clock;

    /// Keyboards begin to repeat a held key after 250 ms to about a second.
    static constexpr std::chrono::milliseconds pause{1000};

    /// The monotonic clock, see clock_gettime(2); tests set another.
    inline static clock_t::time_point (*now)() = clock_t::now;

    /// To be called for every ENTER, used or discarded.
    void add();

    /// To be called for every other key that is used: the user has released ENTER.
    void forget();

    /// @return true when the last ENTER came less than the pause after the one before it
    bool isRepeated() const { return repeated; }

private:
    std::optional<clock_t::time_point> last;
    bool repeated = false;
};
