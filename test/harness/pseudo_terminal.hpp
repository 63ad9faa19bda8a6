#pragma once

#include <termios.h>

#include <string>

/// A terminal as the kernel sees it, see pty(7): the tests hold its master side, the program under
/// test its slave side.
class pseudo_terminal {
public:
    pseudo_terminal(int rows, int columns);
    ~pseudo_terminal();

    pseudo_terminal(const pseudo_terminal&) = delete;
    pseudo_terminal& operator=(const pseudo_terminal&) = delete;

    int master() const { return masterSide; }
    int slave() const { return slaveSide; }

    /// Makes the slave side the controlling terminal and standard input, output and error of the
    /// calling process, which is a fresh child.
    void becomeStandardStreams() const;

    termios attributes() const;

    /// @return true when the user's local modes are on: line editing, echo and signal keys
    bool isCooked() const;

    void resize(int rows, int columns) const;

    /// What a dropped connection looks like to the program.
    void hangUp();

private:
    int masterSide = -1;
    int slaveSide = -1;
};
