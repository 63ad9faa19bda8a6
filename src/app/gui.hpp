#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/menu.hpp"
#include "docs/readtxt.hpp"
#include "flash/flashtools.hpp"
#include "term/termcurses.hpp"

/// The application: terminal, release information, flash operations and documents in one object,
/// and the two menus that offer them.
class gui : public virtual termcurses, public flashtools, public readtxt {
public:
    /// Takes the terminal, reads and checks the package, and asks the core program whether the
    /// emergency flash is to be offered.
    /// @param evaluate true: a scripted walk through both menus, without any flash or reboot, is
    /// queued instead of checking for root
    /// @throws menu_exception when the user is not root
    /// @throws std::invalid_argument when the terminal, the environment or the package is unusable
    explicit gui(bool evaluate);

    /// Shows the current menu and carries out each choice, for ever. A run-time error is
    /// reported as a warning; every other exception ends the loop.
    [[noreturn]] void run();

    /// Shows the current menu once, reads a selection and carries it out.
    void showMenuOnce();

    void onMainMenuSelect(menu_item_t item);
    void onLegalMenuSelect(menu_item_t item);

    /// @throws menu_exception when the real user is not root, see getuid(2)
    static void checkAdministrator();

    /// Queues the keys of the scripted walk.
    void runEvaluation();

    /// Queues the keys that lead from the menu's highlighted line to target and confirm it; none
    /// if the menu has no such line.
    /// @param menu the simulated menu; its highlight moves along
    void scriptSelection(menu_elem_t& menu, menu_item_t target);

    std::uint32_t currentMenu = 0;  ///< index of the menu that is shown next
    std::vector<menu_elem_t> menus;

private:
    void reportWarning(const std::string& text);
    void printWarning();
    bool repaint();
    void takeScreen();
    void composeHeader(menu_elem_t& menu) const;
    void redrawLines(const menu_elem_t& menu);
    void drawLines(const menu_elem_t& menu);
    void drawLine(const menu_elem_t& menu, menu_item_t item, const menu_line_t& line);
    menu_item_t selectFrom(menu_elem_t& menu);
    menu_item_t readSelection(menu_elem_t& menu);
    bool isConfirmed(menu_item_t item);
    void selectByKey(menu_elem_t& menu);
    void selectByNumber(menu_elem_t& menu);
    bool isExitSelected() const;

    bool evalMode;
    int shownWidth = 0;   ///< in columns, of the menu that is on the screen
    std::string warning;  ///< what is shown below the menu; empty at the menu itself
};
