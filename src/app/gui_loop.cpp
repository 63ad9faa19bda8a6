#include <array>
#include <cstdio>
#include <functional>
#include <map>
#include <stdexcept>

#include "app/gui.hpp"
#include "app/menu_tables.hpp"
#include "term/screen_watch.hpp"

namespace {

constexpr int warningPauseSeconds = 1;
constexpr const char* warningPrompt = "Press ENTER to continue...";
constexpr const char* redrawKey = "\f";  // Ctrl-L

/// What is done before a line's text, in this order.
void decorate(gui& terminal, const menu_line_t& line) {
    using decoration_t = std::function<void(gui&, const menu_line_t&)>;
    static const std::array<decoration_t, 3> decorations{
        [](gui& on, const menu_line_t& of) {
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
        },
    };
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
    warning = text;
    if (evalMode) {
        printWarning();
        delay(seconds, warningPauseSeconds);
    } else {
        const screen_watch changes;
        printWarning();
        waitForEnter(warningPrompt);
    }
    warning.clear();
}

void gui::printWarning() {
    trace(trace_warning, warning, newLines(2));
    // The warning repeats the key, and an ESC would swallow the prompt that follows.
    if (hasControlCharacter(warning)) {
        screenCommand(screen_reset_attributes);
    }
}

/// Before every wait for a key: sets the terminal's mode again if somebody has changed it, and
/// draws the screen again if something else may be on it.
/// @return true when it has drawn
bool gui::repaint() {
    resumeMode();
    if (!screen_watch::hasChanged()) {
        return false;
    }
    takeScreen();
    drawLines(menus.at(currentMenu));
    if (!warning.empty()) {
        printWarning();
        trace(warningPrompt);
    }
    return true;
}

/// Clears what somebody else may have drawn, and left the terminal in any colour and with a visible
/// cursor.
void gui::takeScreen() {
    screenCommand(screen_reset_attributes);  // or the terminal would clear in that colour
    screenCommand(screen_clear);
    screenCommand(screen_hide_cursor);
}

void gui::showMenuOnce() {
    menu_elem_t& menu = menus.at(currentMenu);
    menu.callback(selectFrom(menu));
}

menu_item_t gui::selectFrom(menu_elem_t& menu) {
    const screen_watch changes;
    takeScreen();
    numberLines(menu);
    composeHeader(menu);
    shownWidth = menuWidth(menu);
    drawLines(menu);
    return readSelection(menu);
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

/// Draws over the last drawing if all of it is on the screen, and on a cleared screen if not.
void gui::redrawLines(const menu_elem_t& menu) {
    const auto count = static_cast<int>(menu.lines.size());
    const window_size_t window = windowSize();
    const bool highEnough = window.rows == 0 || count < window.rows;
    const bool wideEnough =
        shownWidth != unknownWidth && (window.columns == 0 || shownWidth < window.columns);
    if (highEnough && wideEnough) {
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
    // A failure is ignored: the keys still work, and so does Exit.
    std::fflush(stdout);
}

void gui::drawLine(const menu_elem_t& menu, menu_item_t item, const menu_line_t& line) {
    decorate(*this, line);
    std::string text = numberPrefix(line);
    if (item == menu.selected && line.selectable != 0) {
        text += highlight(line.text);
    } else {
        text += line.text;
    }
    if (line.prompt != 0) {
        text += promptNumber(menu);
    }
    print(text += '\n');
    screenCommand(screen_reset_attributes);
}

menu_item_t gui::readSelection(menu_elem_t& menu) {
    for (;;) {
        if (readInput() < 1) {
            throw std::runtime_error("Cannot extract user input");
        }
        if (isEscapeSequence()) {
            selectByKey(menu);
            redrawLines(menu);
        } else if (isNumber()) {
            selectByNumber(menu);
            redrawLines(menu);
        } else if (currentInput == redrawKey) {
            takeScreen();
            drawLines(menu);
        } else if (!isEnter()) {
            throw std::runtime_error("Wrong input, please confirm selection by 'ENTER' only : " +
                                     currentInput);
        } else if (isConfirmed(menu.selected)) {
            return menu.selected;
        }
    }
}

/// An ENTER on an operation must be a single press: the key that ended the last flash may still be
/// held down. What follows it is discarded: the rest of a line end of two bytes would end the wait
/// after the operation before anybody has seen the result.
bool gui::isConfirmed(menu_item_t item) {
    if (evalMode || currentMenu != index_main || !isOperation(item)) {
        return true;
    }
    if (isRepeatedEnter()) {
        return false;
    }
    discardUntilQuiet();
    return true;
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
