#include "harness/terminal_screen.hpp"

namespace {

int paletteIndex(const VTermColor& colour, bool isDefault) {
    return !isDefault && VTERM_COLOR_IS_INDEXED(&colour) ? colour.indexed.idx : -1;
}

std::string trimmed(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

}  // namespace

terminal_screen::terminal_screen(int rows, int columns)
    : terminal(vterm_new(rows, columns), &vterm_free),
      screen(vterm_obtain_screen(terminal.get())),
      rowCount(rows),
      columnCount(columns) {
    static const VTermScreenCallbacks callbacks = [] {
        VTermScreenCallbacks made{};
        made.settermprop = onProperty;
        return made;
    }();
    vterm_set_utf8(terminal.get(), 1);
    vterm_screen_set_callbacks(screen, &callbacks, this);
    vterm_screen_enable_altscreen(screen, 1);
    vterm_screen_reset(screen, 1);
}

int terminal_screen::onProperty(VTermProp property, VTermValue* value, void* user) {
    if (property == VTERM_PROP_CURSORVISIBLE) {
        static_cast<terminal_screen*>(user)->cursorVisible = value->boolean != 0;
    }
    return 1;
}

void terminal_screen::write(std::string_view bytes) {
    vterm_input_write(terminal.get(), bytes.data(), bytes.size());
}

void terminal_screen::resize(int rows, int columns) {
    vterm_set_size(terminal.get(), rows, columns);
    rowCount = rows;
    columnCount = columns;
}

std::string terminal_screen::row(int number) const {
    std::string text;
    for (int column = 0; column < columnCount; ++column) {
        text += cell(number, column).text;
    }
    return trimmed(text);
}

std::vector<std::string> terminal_screen::rows() const {
    std::vector<std::string> all;
    for (int number = 0; number < rowCount; ++number) {
        all.push_back(row(number));
    }
    while (!all.empty() && all.back().empty()) {
        all.pop_back();
    }
    return all;
}

std::string terminal_screen::text() const {
    std::string all;
    for (const std::string& line : rows()) {
        all += line + "\n";
    }
    return all;
}

std::string terminal_screen::picture() const {
    std::string all = text() + (cursorVisible ? "cursor\n" : "no cursor\n");
    for (int number = 0; number < rowCount; ++number) {
        for (int column = 0; column < columnCount; ++column) {
            const screen_cell_t seen = cell(number, column);
            all += seen.reverse ? 'r' : seen.bold ? 'b' : '.';
            all += std::to_string(seen.foreground) + "," + std::to_string(seen.background) + " ";
        }
        all += "\n";
    }
    return all;
}

bool terminal_screen::contains(std::string_view wanted) const {
    return text().find(wanted) != std::string::npos;
}

screen_cell_t terminal_screen::cell(int row, int column) const {
    VTermScreenCell raw{};
    vterm_screen_get_cell(screen, VTermPos{row, column}, &raw);
    screen_cell_t seen;
    const auto character = raw.chars[0];
    seen.text = character == 0 ? ' ' : character < 0x80 ? static_cast<char>(character) : '?';
    seen.bold = raw.attrs.bold != 0;
    seen.reverse = raw.attrs.reverse != 0;
    seen.foreground = paletteIndex(raw.fg, VTERM_COLOR_IS_DEFAULT_FG(&raw.fg));
    seen.background = paletteIndex(raw.bg, VTERM_COLOR_IS_DEFAULT_BG(&raw.bg));
    return seen;
}
