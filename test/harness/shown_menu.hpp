#pragma once

#include <string>
#include <vector>

#include "app/menu.hpp"
#include "app/menu_tables.hpp"

/// Where a menu's lines are on the screen, as its table has them. With the release information of a
/// package_folder.
class shown_menu {
public:
    /// @param shown a menu as it comes from its table, with or without all of its lines
    explicit shown_menu(menu_elem_t shown);

    /// @return the number before the entry, 0 for a line without one
    int number(menu_item_t item) const;

    /// @return what is typed to highlight the entry
    std::string key(menu_item_t item) const { return std::to_string(number(item)); }

    /// @return the number of the last entry
    int lastNumber() const;

    /// @return the row of the screen, from 0
    int row(menu_item_t item) const;

    int rowCount() const { return static_cast<int>(menu.lines.size()); }

    /// @return the row's text, "[8] Exit"
    std::string text(menu_item_t item) const;

    /// @param highlighted the number of the prompt, none at first
    /// @return all rows
    std::vector<std::string> rows(const std::string& highlighted = "") const;

private:
    menu_elem_t menu;
};

shown_menu mainScreen();
shown_menu legalScreen();
