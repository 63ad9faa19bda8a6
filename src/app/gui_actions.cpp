#include <unistd.h>

#include <array>

#include "app/gui.hpp"
#include "app/menu_tables.hpp"
#include "support/menu_exception.hpp"

namespace {

/// By menu index, so that both callbacks recognise Exit in both menus.
constexpr std::array<menu_item_t, 2> exitLines{main_menu::exit, legal_menu::exit};

}  // namespace

bool gui::isExitSelected() const {
    const menu_elem_t& menu = menus.at(currentMenu);
    return menu.lines.contains(menu.selected) && menu.selected == exitLines.at(currentMenu);
}

void gui::onMainMenuSelect(menu_item_t item) {
    if (isExitSelected()) {
        throw menu_exception("user normal exit");
    }
    switch (item) {
        case main_menu::legalDocuments:
            currentMenu = index_legal;
            break;
        case main_menu::readme:
            showText(item, text_readme);
            break;
        default:
            // Also for the title, if nothing was highlighted: it has no operation, hence a warning.
            runOperation(item);
    }
}

void gui::onLegalMenuSelect(menu_item_t item) {
    if (isExitSelected()) {
        menus.at(currentMenu).selected = 0;
        currentMenu = index_main;
    } else {
        showText(item, text_legal);
    }
}

void gui::checkAdministrator() {
    // Not geteuid: what counts is the person, not a set-user-ID file.
    if (getuid() != 0) {
        throw menu_exception("program started without administrator privileges");
    }
}

void gui::runEvaluation() {
    std::vector<menu_elem_t> simulated = menus;
    for (const auto& [menu, target] : scriptedWalk()) {
        scriptSelection(simulated.at(menu), target);
    }
}

void gui::scriptSelection(menu_elem_t& menu, menu_item_t target) {
    if (!menu.lines.contains(target)) {
        return;
    }
    const auto press = [&](term_key_t key, menu_item_t destination) {
        queueInput(keySequence(key));
        menu.selected = destination;
    };
    const auto above = [&] { return lineAbove(menu, menu.selected); };
    const auto below = [&] { return lineBelow(menu, menu.selected); };
    // No key leads to the title: it stands for the line where key-up leads at first.
    if (target == 0 && !isSelectable(menu, menu.selected)) {
        press(term_key_up, above());
    } else {
        while (target < menu.selected && above() != menu.selected) {
            press(term_key_up, above());
        }
        while (target > menu.selected && below() != menu.selected) {
            press(term_key_down, below());
        }
    }
    queueInput(keySequence(term_key_enter));
}
