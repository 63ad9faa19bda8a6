#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string>

/// Key of one line of a menu; not what the user sees, see menu_line_t::shownNumber.
using menu_item_t = std::int32_t;

/// One line of a menu.
struct menu_line_t {
    std::string text;
    std::int32_t shownNumber = 0;  ///< in brackets before the text; 0 for a line without one
    std::uint8_t prompt = 0;       ///< 1: shows the number of the highlighted line
    std::uint8_t emphasis = 0;     ///< 1: bold
    std::uint8_t selectable = 0;   ///< 1: the user can choose it
    std::int32_t foreground = -1;  ///< palette index, -1 for the terminal's default
    std::int32_t background = -1;  ///< palette index, -1 for the terminal's default
};

/// One menu: what the user sees, and what a choice does.
struct menu_elem_t {
    menu_item_t selected = 0;         ///< the highlighted line
    menu_item_t headerLine = 0;       ///< key of the line that shows the title
    menu_item_t informationLine = 0;  ///< key of the line that shows the release values
    std::function<void(menu_item_t)> callback;
    std::map<menu_item_t, menu_line_t> lines;
};

// The rules of numbering and movement, for the keyboard and the scripted walk alike.

/// Numbers the selectable lines from 1 in key order; the others get 0.
void numberLines(menu_elem_t& menu);

bool isSelectable(const menu_elem_t& menu, menu_item_t item);

/// @return where key-up leads from item; item itself if it leads nowhere. From a line that
/// cannot be selected (at the start) it leads to the first one below it that can.
menu_item_t lineAbove(const menu_elem_t& menu, menu_item_t item);

/// @return where key-down leads from item; item itself if it leads nowhere
menu_item_t lineBelow(const menu_elem_t& menu, menu_item_t item);

/// @return the selectable line with this shown number
std::optional<menu_item_t> lineWithNumber(const menu_elem_t& menu, std::int32_t number);

/// @return the text before the line's own: its shown number in brackets, if it has one
std::string numberPrefix(const menu_line_t& line);

/// @return the text after the prompt: the shown number of the highlighted line, as wide as
/// the menu's greatest one so that it covers what it replaces; empty while nothing is highlighted
std::string promptNumber(const menu_elem_t& menu);

/// @return true when the text may move the cursor elsewhere than to the next column, or leave the
/// terminal in the middle of a sequence
bool hasControlCharacter(const std::string& text);

/// The menuWidth of a menu with a control character, whose width nobody knows.
inline constexpr int unknownWidth = std::numeric_limits<int>::max();

/// @return how many columns the widest line takes, whatever is highlighted, or unknownWidth; never
/// too few, as every byte counts as a column
int menuWidth(const menu_elem_t& menu);
