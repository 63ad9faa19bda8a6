#include "term/termcurses.hpp"

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <stdexcept>

#include "term/terminal_guard.hpp"

// Last, and nowhere else: these headers define macros with names like "lines" and "columns".
#include <curses.h>
#include <term.h>

namespace {

enum capability_t : std::uint32_t {
    cap_clear = 0,
    cap_hide_cursor = 1,
    cap_show_cursor = 2,
    cap_foreground = 3,
    cap_background = 4,
    cap_save_cursor = 5,
    cap_carriage_return = 6,
    cap_bold = 7,
    cap_reverse = 8,
    cap_reset = 9,
    cap_cursor_up = 10,
    cap_cursor_down = 11,
    cap_key_up = 12,
    cap_key_up_alternative = 13,
    cap_key_down = 14,
    cap_key_down_alternative = 15
};

/// The terminfo name of every capability; the alternatives are derived, not looked up.
const std::unordered_map<std::uint32_t, std::string>& capabilityNames() {
    static const std::unordered_map<std::uint32_t, std::string> names{
        {cap_clear, "clear"},          {cap_hide_cursor, "civis"},   {cap_show_cursor, "cnorm"},
        {cap_foreground, "setaf"},     {cap_background, "setab"},    {cap_save_cursor, "sc"},
        {cap_carriage_return, "cr"},   {cap_bold, "bold"},           {cap_reverse, "rev"},
        {cap_reset, "sgr0"},           {cap_cursor_up, "cuu"},       {cap_cursor_down, "cud"},
        {cap_key_up, "kcuu1"},         {cap_key_up_alternative, ""}, {cap_key_down, "kcud1"},
        {cap_key_down_alternative, ""}};
    return names;
}

/// What standard input was like before the program changed it.
termios savedAttributes{};

/// No line editing, no echo, no signal keys, and reads that return at once. Output stays as it is.
termios rawAttributes(termios attributes) {
    attributes.c_lflag &= ~static_cast<tcflag_t>(ISIG | ICANON | ECHO);
    attributes.c_cc[VTIME] = 0;
    attributes.c_cc[VMIN] = 0;
    return attributes;
}

bool isSameMode(const termios& one, const termios& other) {
    return one.c_iflag == other.c_iflag && one.c_oflag == other.c_oflag &&
           one.c_cflag == other.c_cflag && one.c_lflag == other.c_lflag &&
           std::equal(std::begin(one.c_cc), std::end(one.c_cc), std::begin(other.c_cc));
}

bool takeTerminal() {
    const char* name = std::getenv("TERM");
    if (name == nullptr || *name == '\0') {
        name = "vt100";  // terminfo's custom; refused later on, as it cannot hide its cursor
    }
    const int input = fileno(stdin);  // may be none: nothing can be asked of it then
    if (tcgetattr(input, &savedAttributes) != 0) {
        return false;
    }
    const termios raw = rawAttributes(savedAttributes);
    // Without an error slot terminfo itself reports an unknown terminal, and ends the process.
    return tcsetattr(input, TCSANOW, &raw) == 0 && setupterm(name, STDOUT_FILENO, nullptr) == OK;
}

bool giveTerminalBack() { return tcsetattr(fileno(stdin), TCSANOW, &savedAttributes) == 0; }

std::string stringCapability(const std::string& name) {
    const char* text = tigetstr(name.c_str());
    if (text == nullptr) {
        throw std::invalid_argument("Cannot initialize terminal sequences");
    }
    return text;
}

std::string substituted(const std::string& sequence, std::int32_t number) {
    const char* text =
        tparm(sequence.c_str(), static_cast<long>(number), 0L, 0L, 0L, 0L, 0L, 0L, 0L, 0L);
    if (text == nullptr) {
        throw std::invalid_argument("Cannot get parameter for terminal sequence");
    }
    return text;
}

/// The terminal may be in normal or in application mode: nobody has set either. In both modes, one
/// byte follows ESC "[" or ESC "O".
std::string otherCursorKeyForm(const std::string& sequence) {
    if (sequence.starts_with("\x1b[")) {
        return "\x1bO" + sequence.substr(2, 1);
    }
    if (sequence.starts_with("\x1bO")) {
        return "\x1b[" + sequence.substr(2, 1);
    }
    throw std::invalid_argument("Cannot match alternative terminal sequence");
}

}  // namespace

termcurses::termcurses() { initTermcurses(); }

termcurses::~termcurses() {
    print(sequences.at(cap_clear));
    print(sequences.at(cap_show_cursor));
    initTerminal(TERM_UNINIT);
}

void termcurses::initTermcurses() {
    print = [this](const std::string& sequence) {
        if (sequence.empty() || (!silent && putp(sequence.c_str()) != OK)) {
            throw std::runtime_error("Cannot print terminal line");
        }
    };
    parameterise = [this](const std::string& sequence, std::int32_t number) {
        for (const substitution_t& known : substitutions) {
            if (known.number == number && known.sequence == sequence) {
                return known.text;
            }
        }
        substitution_t made{sequence, number, {}};
        made.text = substituted(sequence, number);
        substitutions.push_back(made);
        return made.text;
    };
    lookUp = [](const std::string& name) { return stringCapability(name); };
    alternative = [](const std::string& sequence) { return otherCursorKeyForm(sequence); };
    initTerminal = [](term_init_t kind) {
        if (kind == TERM_INIT) {
            if (!takeTerminal()) {
                throw std::invalid_argument("Cannot initialize terminal");
            }
        } else if (kind != TERM_UNINIT || !giveTerminalBack()) {
            throw std::invalid_argument("Cannot un-initialize terminal");
        }
    };
    initTerminal(TERM_INIT);
    initSequences();
    terminal_guard::rememberCursor(sequences.at(cap_show_cursor), sequences.at(cap_hide_cursor));
    print(sequences.at(cap_clear));
    print(sequences.at(cap_hide_cursor));
}

void termcurses::initSequences() {
    substitutions.clear();
    sequences = capabilityNames();
    for (auto& [id, text] : sequences) {
        if (!text.empty()) {
            text = lookUp(text);
        }
    }
    sequences.at(cap_key_up_alternative) = alternative(sequences.at(cap_key_up));
    sequences.at(cap_key_down_alternative) = alternative(sequences.at(cap_key_down));
}

void termcurses::screenCommand(std::int32_t command) {
    switch (command) {
        case screen_clear:
            return print(sequences.at(cap_clear));
        case screen_hide_cursor:
            return print(sequences.at(cap_hide_cursor));
        case screen_show_cursor:
            return print(sequences.at(cap_show_cursor));
        case screen_reset_attributes:
            return print(sequences.at(cap_reset));
        default:
            return;
    }
}

void termcurses::printWithNumber(std::uint32_t capability, std::int32_t number) {
    print(parameterise(sequences.at(capability), number));
}

void termcurses::setForeground(std::int32_t colour) { printWithNumber(cap_foreground, colour); }

void termcurses::setBackground(std::int32_t colour) { printWithNumber(cap_background, colour); }

void termcurses::setBold() { print(sequences.at(cap_bold)); }

std::string termcurses::highlight(const std::string& text) const {
    return sequences.at(cap_reverse) + text + sequences.at(cap_reset);
}

/// The saved position marks where the last drawing ended; nothing goes back there.
void termcurses::cursorUp(std::int32_t count) {
    print(sequences.at(cap_save_cursor) + sequences.at(cap_carriage_return));
    printWithNumber(cap_cursor_up, count);
}

std::string termcurses::keySequence(std::uint32_t key) const {
    switch (key) {
        case term_key_up:
            return sequences.at(cap_key_up);
        case term_key_down:
            return sequences.at(cap_key_down);
        case term_key_enter:
            return "\n";
        default:
            return "";
    }
}

bool termcurses::isKey(std::uint32_t key, const std::string& input) const {
    switch (key) {
        case term_key_up:
            return input == sequences.at(cap_key_up) ||
                   input == sequences.at(cap_key_up_alternative);
        case term_key_down:
            return input == sequences.at(cap_key_down) ||
                   input == sequences.at(cap_key_down_alternative);
        default:
            return false;
    }
}

void termcurses::setMode(std::uint32_t mode) {
    switch (mode) {
        case 0:
            return initTerminal(TERM_INIT);
        case 1:
            return initTerminal(TERM_UNINIT);
        case 2:
            screenCommand(screen_clear);
            return screenCommand(screen_hide_cursor);
        case 3:
            screenCommand(screen_clear);
            return screenCommand(screen_show_cursor);
        case 4:
            return screenCommand(screen_show_cursor);
        default:
            return;
    }
}

void termcurses::resumeMode() {
    const termios raw = rawAttributes(savedAttributes);
    termios current{};
    if (tcgetattr(STDIN_FILENO, &current) == 0 && !isSameMode(current, raw)) {
        tcsetattr(STDIN_FILENO, TCSANOW, &raw);
    }
}

window_size_t termcurses::windowSize() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) {
        return {};
    }
    return {size.ws_row, size.ws_col};
}
