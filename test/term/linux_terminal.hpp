#pragma once

#include <cstdlib>
#include <functional>
#include <string>

#include "harness/terminal_session.hpp"
#include "term/termcurses.hpp"

// The sequences of "linux", whose arrow keys send the normal form.
inline constexpr const char* linuxClear = "\x1b[H\x1b[J";
inline constexpr const char* linuxHide = "\x1b[?25l\x1b[?1c";
inline constexpr const char* linuxShow = "\x1b[?25h\x1b[?0c";
inline constexpr const char* linuxReset = "\x1b[m\x0f";

inline void useTerminal(const char* name) {
    if (name == nullptr) {
        unsetenv("TERM");
    } else {
        setenv("TERM", name, 1);
    }
}

/// What the call returns, in a child on a terminal of this type.
inline std::string on(const char* name, const std::function<std::string(termcurses&)>& call) {
    return terminal_session([&] {
               useTerminal(name);
               termcurses terminal;
               return call(terminal);
           })
        .result();
}
