#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

enum term_init_t : int { TERM_INIT = 0, TERM_UNINIT = 1 };

/// The keys that the terminal layer knows; the values of keySequence and isKey.
enum term_key_t : std::uint32_t { term_key_up = 0, term_key_down = 1, term_key_enter = 2 };

/// The commands of screenCommand.
enum screen_command_t : std::int32_t {
    screen_clear = 0,
    screen_hide_cursor = 1,
    screen_show_cursor = 2,
    screen_reset_attributes = 3
};

/// Rows and columns of the terminal's window; 0 where they are unknown.
struct window_size_t {
    int rows = 0;
    int columns = 0;
};

/// The user's terminal: its raw keyboard mode and its control sequences as terminfo(5) has them.
/// Output goes to standard output through stdio and is not flushed here.
class termcurses {
public:
    /// Takes the terminal: raw mode, sequences loaded, screen cleared, cursor hidden.
    /// @throws std::invalid_argument when standard input is no terminal, or the terminal lacks a
    /// sequence; nothing is undone then
    termcurses();

    /// Gives the terminal back: screen cleared, cursor shown, attributes as they were. A failure
    /// must not be ignored: it ends the process, see std::terminate, and terminal_guard restores
    /// what it can.
    ~termcurses();

    termcurses(const termcurses&) = delete;
    termcurses& operator=(const termcurses&) = delete;

    void initTermcurses();

    /// Loads the table of sequences again.
    /// @throws std::invalid_argument when the terminal lacks one of them
    void initSequences();

    /// Prints the command's sequence; an unknown command prints nothing.
    void screenCommand(std::int32_t command);

    /// @param colour index of the terminal's palette, handed to it unchecked
    void setForeground(std::int32_t colour);
    void setBackground(std::int32_t colour);
    void setBold();

    /// @return the text in reverse video; the reset after it ends colours and bold, too
    std::string highlight(const std::string& text) const;

    /// Goes to the start of the line that is count lines further up.
    void cursorUp(std::int32_t count);

    /// @param key one of term_key_t
    /// @return the bytes that the key sends; empty for any other key
    std::string keySequence(std::uint32_t key) const;

    /// @param key term_key_up or term_key_down; any other value is never recognised
    /// @param input one whole input, in the normal or the application form of the cursor keys
    bool isKey(std::uint32_t key, const std::string& input) const;

    /// @param mode 0 takes the terminal's mode, 1 gives it back, 2 clears and hides the cursor,
    /// 3 clears and shows it, 4 shows it; above that nothing happens
    void setMode(std::uint32_t mode);

    /// Sets the raw mode again, whoever may have changed it. Does not change what is given back in
    /// the end. Does nothing if the terminal is gone.
    static void resumeMode();

    /// @return the size of the window on standard output; see tty_ioctl(4), TIOCGWINSZ
    static window_size_t windowSize();

    /// When set, print writes nothing.
    bool silent = false;

    /// By capability id: the terminfo name while loading, from then on the sequence.
    std::unordered_map<std::uint32_t, std::string> sequences;

    /// TERM_INIT: saves the attributes of standard input, sets the raw mode and opens terminfo;
    /// TERM_UNINIT: sets the saved attributes.
    /// @throws std::invalid_argument when a step fails, or for any other kind
    std::function<void(term_init_t)> initTerminal;

    /// Name of a terminfo string capability to its value.
    /// @throws std::invalid_argument when the terminal does not have it
    std::function<std::string(const std::string&)> lookUp;

    /// Sequence of a cursor key to its other form: normal to application mode and back.
    /// @throws std::invalid_argument for anything but ESC "[" or ESC "O" at its start
    std::function<std::string(const std::string&)> alternative;

    /// Sequence and number to the sequence with the number in it. Terminfo is asked once for each
    /// pair, until initSequences.
    /// @throws std::invalid_argument when terminfo cannot make it
    std::function<std::string(const std::string&, std::int32_t)> parameterise;

    /// Writes a sequence to standard output.
    /// @throws std::runtime_error for an empty sequence, and when it cannot be written
    std::function<void(const std::string&)> print;

private:
    void printWithNumber(std::uint32_t capability, std::int32_t number);

    struct substitution_t {
        std::string sequence;
        std::int32_t number;
        std::string text;
    };

    /// What terminfo has made: every drawing needs the same five.
    std::vector<substitution_t> substitutions;
};
