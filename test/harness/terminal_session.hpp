#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>

#include "harness/program.hpp"
#include "harness/pseudo_terminal.hpp"
#include "harness/terminal_screen.hpp"

/// One process on its own terminal, and a user in front of it. Every wait ends when what it waits
/// for arrives, or with an exception that shows the screen, if the process has printed nothing
/// during patience().
class terminal_session {
public:
    explicit terminal_session(const program_t& program, int rows = 24, int columns = 80);

    /// Runs a part of the test itself in a child process on the terminal.
    /// @param body its result is what result() returns
    explicit terminal_session(const std::function<std::string()>& body, int rows = 24,
                              int columns = 80);

    ~terminal_session();

    terminal_session(const terminal_session&) = delete;
    terminal_session& operator=(const terminal_session&) = delete;

    /// Types keys once the process has dealt with the last ones and waits for the next.
    void press(std::string_view keys);

    /// Types bytes at once, read or not.
    void type(std::string_view bytes);

    /// Types bytes as fast as the terminal takes them, and reads its output at the same time:
    /// otherwise the process and its user might wait for each other.
    void paste(std::string_view bytes);

    /// From now on the terminal takes one byte of output per millisecond, as a serial line at 9600
    /// baud does, or as much as there is.
    void takeOutputSlowly(bool slowly) { isSlow = slowly; }

    /// Returns when the process has dealt with the last keys, waits for the next, and all its
    /// output is on the screen.
    void awaitKeyWait();

    /// Returns when the process waits for the next key or has ended.
    /// @return true when it waits
    bool awaitKeyWaitOrEnd();

    void awaitScreen(std::string_view text);
    void await(const std::function<bool()>& condition, const std::string& what);

    /// Waits for the end of the process.
    /// @return its wait status, see waitpid(2)
    int awaitEnd();

    /// @return what the body returned; waits for its end
    std::string result();

    /// From now on key waits and signals are about this process, one that the started one has
    /// started. Waits for its first appearance.
    void followChild();

    bool isWaitingForKey() const;

    /// @return true while the process waits for the rest of a key, for a limited time
    bool isWaitingForMore() const;

    /// @return true when the process has to wait for the terminal to take more of its output
    bool isHeldUpByOutput() const;

    bool hasEnded() const;
    void signal(int number) const;
    void resize(int rows, int columns);
    void hangUp();

    pid_t process() const { return followed; }
    const pseudo_terminal& terminal() const { return pty; }
    const terminal_screen& screen() const { return display; }

    /// @return every byte that the process has written to the terminal so far
    const std::string& output() const { return allOutput; }

private:
    void start(const std::function<void()>& inChild);
    bool pump(int milliseconds);
    bool isAtNextKey() const;

    pseudo_terminal pty;
    terminal_screen display;
    std::string allOutput;
    std::string timesBlockedAtLastKey;
    pid_t child = -1;
    pid_t followed = -1;
    int resultPipe = -1;
    int waitStatus = -1;
    bool ended = false;
    bool isSlow = false;
};
