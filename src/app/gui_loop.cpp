#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <map>
#include <stdexcept>

#include "app/gui.hpp"
#include "app/menu_tables.hpp"

namespace {

constexpr int warningPauseSeconds = 1;

constexpr unsigned char del = 0x7f;
constexpr unsigned char lastC1 = 0x9f;

/// Repeated on a terminal, a control character may leave it in the middle of a sequence.
bool hasControlCharacter(const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](char character) {
        const auto code = static_cast<unsigned char>(character);
        return code < ' ' || (code >= del && code <= lastC1);
    });
}

/// What is done ahead of a line's text, in this order.
void decorate(gui& terminal, const menu_line_t& line) {
    using decoration_t = std::function<void(gui&, const menu_line_t&)>;
    static const std::array<decoration_t, 3> decorations{[](gui& on, const menu_line_t& of) {
                                                             if (of.emphasis != 0) {
                                                                 on.setBold();
                                                             }
                                                         },
                                                         [](gui& on, const menu_line_t& of) {
                                                             if (of.foreground != -1) {
                                                                 on.setForeground(of.foreground);
                                                             }
                                                         },
                                                         [](gui& on, const menu_line_t& of) {
                                                             if (of.background != -1) {
                                                                 on.setBackground(of.background);
                                                             }
                                                         }};
    for (const decoration_t& decoration : decorations) {
        decoration(terminal, line);
    }
}

}  // namespace

void gui::run() {
    for (;;) {
        try {
            showMenuOnce();
        } catch (const std::runtime_error& error) {
            reportWarning(error.what());
        }
    }
}

void gui::reportWarning(const std::string& text) {
    trace(trace_warning, text, newLines(2));
    if (hasControlCharacter(text)) {
        screenCommand(screen_reset_attributes);
    }
    if (evalMode) {
        delay(seconds, warningPauseSeconds);
    } else {
        waitForEnter("Press ENTER to continue...");
    }
}

void gui::showMenuOnce() {
    menu_elem_t& menu = menus.at(currentMenu);
    screenCommand(screen_clear);
    numberLines(menu);
    composeHeader(menu);
    drawLines(menu);
    menu.callback(readSelection(menu));
}

void gui::composeHeader(menu_elem_t& menu) const {
    static const std::map<int, std::string> headers{{0, titleBeginning + getInfo(release_firmware)},
                                                    {1, "Varn-FW: " + getInfo(release_firmware)},
                                                    {2, "SDRR: " + getInfo(release_sdr)},
                                                    {3, "for " + getInfo(release_system)}};
    const std::string margin(7, ' ');
    std::string title;
    std::string information;
    for (const auto& [part, text] : headers) {
        if (part == 0) {
            title.append(margin).append(text).append(margin);
        } else {
            information.append(text).append(2, ' ');
        }
    }
    menu.lines.at(menu.headerLine).text = title;
    menu.lines.at(menu.informationLine).text = information;
}

/// Draws over the last drawing where that is whole on the screen, and anew where it is not.
void gui::redrawLines(const menu_elem_t& menu) {
    const auto count = static_cast<int>(menu.lines.size());
    const window_size_t window = windowSize();
    const bool highEnough = window.rows == 0 || count < window.rows;
    const bool wideEnough = window.columns == 0 || menuWidth(menu) < window.columns;
    if (window == drawnInto && highEnough && wideEnough) {
        cursorUp(count);
    } else {
        screenCommand(screen_clear);
    }
    drawLines(menu);
}

void gui::drawLines(const menu_elem_t& menu) {
    for (const auto& [item, line] : menu.lines) {
        drawLine(menu, item, line);
    }
    std::fflush(stdout);
    drawnInto = windowSize();
}

void gui::drawLine(const menu_elem_t& menu, menu_item_t item, const menu_line_t& line) {
    std::string text = line.text;
    if (line.prompt != 0) {
        text += promptNumber(menu);
    }
    if (item == menu.selected && line.selectable != 0) {
        text = highlight(text);
    }
    decorate(*this, line);
    print(numberPrefix(line) + text + "\n");
    screenCommand(screen_reset_attributes);
}

menu_item_t gui::readSelection(menu_elem_t& menu) {
    for (;;) {
        if (readInput() < 1) {
            throw std::runtime_error("Cannot extract user input");
        }
        if (isEscapeSequence()) {
            selectByKey(menu);
        } else if (isNumber()) {
            selectByNumber(menu);
        } else if (isEnter()) {
            return menu.selected;
        } else {
            throw std::runtime_error("Wrong input, please confirm selection by 'ENTER' only : " +
                                     currentInput);
        }
        redrawLines(menu);
    }
}

void gui::selectByKey(menu_elem_t& menu) {
    if (isKey(term_key_up, currentInput)) {
        menu.selected = lineAbove(menu, menu.selected);
    } else if (isKey(term_key_down, currentInput)) {
        menu.selected = lineBelow(menu, menu.selected);
    }
}

void gui::selectByNumber(menu_elem_t& menu) {
    const int number = inputAsNumber();
    const auto line = lineWithNumber(menu, number);
    if (!line) {
        throw std::runtime_error("Wrong selection, please provide valid number : " +
                                 std::to_string(number));
    }
    menu.selected = *line;
}
