#include "harness/shown_menu.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

shown_menu::shown_menu(menu_elem_t shown) : menu(std::move(shown)) {
    numberLines(menu);
    menu.lines.at(menu.headerLine).text.insert(0, "       ").append("2.41");
    menu.lines.at(menu.informationLine).text = "Varn-FW: 2.41  SDRR: 3.07  for SV 1000";
}

int shown_menu::number(menu_item_t item) const { return menu.lines.at(item).shownNumber; }

int shown_menu::lastNumber() const {
    const auto hasEntry = [](const auto& line) { return line.second.selectable != 0; };
    return static_cast<int>(std::count_if(menu.lines.begin(), menu.lines.end(), hasEntry));
}

int shown_menu::row(menu_item_t item) const {
    return static_cast<int>(std::distance(menu.lines.begin(), menu.lines.find(item)));
}

std::string shown_menu::text(menu_item_t item) const {
    const menu_line_t& line = menu.lines.at(item);
    const std::string prefix = line.selectable != 0 ? "[" + key(item) + "] " : "";
    return prefix + line.text;
}

std::vector<std::string> shown_menu::rows(const std::string& highlighted) const {
    std::vector<std::string> all;
    for (const auto& [item, line] : menu.lines) {
        const bool isPrompt = line.prompt != 0;
        const std::string prompt = highlighted.empty() ? ">" : "> " + highlighted;
        all.push_back(isPrompt ? prompt : text(item));
    }
    return all;
}

shown_menu mainScreen() { return shown_menu(makeMainMenu()); }

shown_menu legalScreen() { return shown_menu(makeLegalMenu()); }
