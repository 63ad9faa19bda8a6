#pragma once

#include <string>

#include "support/stream.hpp"

/// What every part of the program needs from the operating system: child programs with a fixed,
/// minimal environment, file tests, pauses, and small clean-ups of texts.
class support : public virtual stream {
public:
    static constexpr int seconds = 0;
    static constexpr int milliseconds = 1;

    /// Builds the environment of all child programs: PATH, TERM, PWD and LANG. Text after a
    /// semicolon in one of them becomes a further variable.
    /// @throws std::invalid_argument when PATH, TERM or the working directory is missing, or the
    /// whole is longer than 4096 characters
    support();

    support(const support&) = delete;
    support& operator=(const support&) = delete;

    /// Runs a program and waits until it has ended.
    /// @param command program and arguments, separated by blanks, at most 254 characters; the
    /// program is looked up along PATH unless its name has a slash
    /// @param showOutput false: descriptors 1 and 2 are a null device that refuses writes
    /// @return the exit status, 0 to 255
    /// @throws std::runtime_error when the program cannot be started or is ended by a signal
    int runCommand(const std::string& command, bool showOutput);

    /// @return true when which(1) finds the program along PATH
    /// @throws std::runtime_error as runCommand
    bool programExists(const std::string& name);

    /// Runs clear(1) on the terminal.
    /// @return its exit status
    int clearScreen();

    /// Prints message, unless it is empty, and reads standard input up to the next line feed. One
    /// that was typed earlier counts, because here, unlike at a menu, it chooses nothing. Goes on
    /// waiting at end of file; a terminal that has hung up ends the process by SIGHUP.
    void waitForEnter(const std::string& message);

    /// Sleeps once, see nanosleep(2).
    /// @param unit seconds or milliseconds; any other unit sleeps no time
    /// @param amount how many; whole seconds of a milliseconds amount are dropped
    /// @throws std::runtime_error when a signal cuts the sleep short
    static void delay(int unit, int amount);

    /// @return true when there is something at path, of whatever kind (access(2), F_OK)
    static bool fileExists(const std::string& path);

    /// @return the last component of path; empty for one that ends in a slash
    static std::string fileName(const std::string& path);

    /// @return count line feeds, none for a count below 1
    static std::string newLines(int count);

    static void removeChar(std::string& text, char character);
    static void removeQuotes(std::string& text);
    static void removeLineEnds(std::string& text);

private:
    enum class output_t { shown, unwritable, discarded };

    int runProgram(const std::string& command, output_t output) const;

    std::string environment;
};
