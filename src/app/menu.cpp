#include "app/menu.hpp"

#include <algorithm>

namespace {

std::string greatestNumber(const menu_elem_t& menu) {
    std::int32_t greatest = 0;
    for (const auto& [item, line] : menu.lines) {
        greatest = std::max(greatest, line.shownNumber);
    }
    return std::to_string(greatest);
}

}  // namespace

void numberLines(menu_elem_t& menu) {
    std::int32_t number = 0;
    for (auto& [item, line] : menu.lines) {
        line.shownNumber = line.selectable != 0 ? ++number : 0;
    }
}

bool isSelectable(const menu_elem_t& menu, menu_item_t item) {
    const auto line = menu.lines.find(item);
    return line != menu.lines.end() && line->second.selectable != 0;
}

menu_item_t lineAbove(const menu_elem_t& menu, menu_item_t item) {
    if (!isSelectable(menu, item)) {
        return lineBelow(menu, item);
    }
    for (auto line = menu.lines.find(item); line != menu.lines.begin();) {
        --line;
        if (line->second.selectable != 0) {
            return line->first;
        }
    }
    return item;
}

menu_item_t lineBelow(const menu_elem_t& menu, menu_item_t item) {
    for (auto line = menu.lines.upper_bound(item); line != menu.lines.end(); ++line) {
        if (line->second.selectable != 0) {
            return line->first;
        }
    }
    return item;
}

std::optional<menu_item_t> lineWithNumber(const menu_elem_t& menu, std::int32_t number) {
    for (const auto& [item, line] : menu.lines) {
        if (line.selectable != 0 && line.shownNumber == number) {
            return item;
        }
    }
    return std::nullopt;
}

std::string numberPrefix(const menu_line_t& line) {
    return line.shownNumber == 0 ? "" : "[" + std::to_string(line.shownNumber) + "] ";
}

std::string promptNumber(const menu_elem_t& menu) {
    if (!isSelectable(menu, menu.selected)) {
        return "";
    }
    std::string number = std::to_string(menu.lines.at(menu.selected).shownNumber);
    number.resize(greatestNumber(menu).size(), ' ');
    return number;
}

bool hasControlCharacter(const std::string& text) {
    constexpr unsigned char del = 0x7f;
    constexpr unsigned char lastC1 = 0x9f;
    return std::any_of(text.begin(), text.end(), [](char character) {
        const auto code = static_cast<unsigned char>(character);
        return code < ' ' || (code >= del && code <= lastC1);
    });
}

int menuWidth(const menu_elem_t& menu) {
    std::size_t widest = 0;
    for (const auto& [item, line] : menu.lines) {
        if (hasControlCharacter(line.text)) {
            return unknownWidth;
        }
        const std::string number = line.prompt != 0 ? greatestNumber(menu) : numberPrefix(line);
        widest = std::max(widest, number.size() + line.text.size());
    }
    return static_cast<int>(widest);
}
