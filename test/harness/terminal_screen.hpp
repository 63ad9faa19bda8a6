#pragma once

#include <vterm.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What is seen at one place of the screen.
struct screen_cell_t {
    std::string text;
    bool bold = false;
    bool reverse = false;
    int foreground = -1;  ///< palette index, -1 for the terminal's default
    int background = -1;
};

/// A terminal emulator (libvterm): takes the program's output and knows what a user sees.
class terminal_screen {
public:
    terminal_screen(int rows, int columns);

    void write(std::string_view bytes);
    void resize(int rows, int columns);

    /// @return the row's text without the blanks at its end
    std::string row(int number) const;

    /// @return all rows, without the empty ones at the end
    std::vector<std::string> rows() const;

    /// @return all rows in one text, for messages
    std::string text() const;

    /// @return everything that a user sees, for comparisons: texts, their attributes, and whether
    /// there is a cursor
    std::string picture() const;

    bool contains(std::string_view text) const;
    screen_cell_t cell(int row, int column) const;
    bool isCursorVisible() const { return cursorVisible; }

private:
    static int onProperty(VTermProp property, VTermValue* value, void* user);

    std::unique_ptr<VTerm, decltype(&vterm_free)> terminal;
    VTermScreen* screen;
    int rowCount;
    int columnCount;
    bool cursorVisible = true;
};
