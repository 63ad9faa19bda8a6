#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>

#include "support/enter_times.hpp"

class input_watch;

/// The levels of stream::trace, single bits of its level mask.
enum trace_level_t : std::uint32_t {
    trace_debug = 1,
    trace_info = 2,
    trace_plain = 4,
    trace_warning = 8,
    trace_error = 16,
    trace_critical = 32,
    trace_all = 0x3f
};

/// What the user sees and types: trace lines on standard output, and one input after the other,
/// either typed on standard input or queued in advance by a scripted run.
class stream {
public:
    /// Prints lead, the level's prefix, message and a line feed, and flushes standard output.
    /// @param level one bit of trace_level_t; a level without a bit in the mask is dropped
    /// @param lead text before the prefix, usually empty or two line feeds
    /// @throws std::runtime_error when the level passes the mask and is no single known level
    void trace(std::uint32_t level, const std::string& message, const std::string& lead) const;

    /// Prints message on a separate line; an empty message prints nothing.
    void trace(const std::string& message) const;

    /// Takes the next input: the first queued one, or else one key typed from now on. What was
    /// typed before the last drawing had left the machine is thrown away, and where an ENTER is
    /// among it, all that follows until the line has been quiet for 50 ms. Waits without a time
    /// limit; a terminal that has hung up ends the process by SIGHUP.
    /// @return the number of characters of the input; 0 when nothing could be read
    /// @throws menu_exception when the input ends in Ctrl-C
    int readInput();

    /// Appends an input for readInput; an empty one stands for Ctrl-C.
    void queueInput(const std::string& input);

    /// @return the integer at the start of the current input, 0 where there is none
    int inputAsNumber() const;

    /// @return true for ESC followed by at least one character
    bool isEscapeSequence() const;

    /// @return true for exactly one line feed
    bool isEnter() const;

    /// @return true when no character is anything but 0 to 9, so for an empty input, too
    bool isNumber() const;

    /// @return true when the last key was an ENTER that may be the repeat of a held key or of a
    /// knocking one, as it came within a second of another ENTER
    bool isRepeatedEnter() const { return enters.isRepeated(); }

protected:
    /// Throws away what is typed until the line has been quiet for 50 ms.
    void discardUntilQuiet();

    /// Of what has been typed, leaves a single ENTER to be read. Several come from a held or a
    /// knocking key: they are thrown away, and so is what follows until the line has been quiet for
    /// 50 ms. Does nothing where standard input is no terminal.
    void discardKnocking();

    /// @return the next byte that waits on standard input, EOF where none does
    static int readByte();

    /// Waits for a byte on standard input without using the processor, at end of file, too. A
    /// terminal that has hung up ends the process by SIGHUP.
    int awaitByte(const input_watch& keyboard) const;

    std::uint32_t levelMask = trace_all;
    std::string currentInput;
    std::deque<std::string> scriptedInputs;

    /// What is to be done before a wait for a key, and when a signal interrupts it; see
    /// input_watch::waitReadable.
    std::function<bool()> settleBeforeWait = [] { return false; };

    enter_times enters;

private:
    void readKey();
    int discardTyped(const input_watch& keyboard, bool (*callsForQuiet)(int enters));
    void takeKey(const input_watch& keyboard);

    /// @return false when no byte waits
    static bool takeWaitingBytes(const std::function<void(char)>& take);
};
