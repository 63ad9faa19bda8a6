#pragma once

#include <cstdint>
#include <span>

#include "app/menu.hpp"

/// The keys of the main menu's lines, from top to bottom.
namespace main_menu {
enum : menu_item_t {
    title,
    normalFlash,
    forcedFlash1st,
    forcedFlash2nd,
    emergencyFlash,
    gapAfterFlashes,
    readme,
    legalDocuments,
    gapAfterDocuments,
    reboot,
    exit,
    prompt,
    information,
    notice
};
}  // namespace main_menu

/// The keys of the legal documents menu's lines, from top to bottom. No line offers the Debian
/// copyrights; the document viewer knows them by this key.
namespace legal_menu {
enum : menu_item_t {
    title,
    heading,
    eula,
    licenceFlashtools,
    licenceMorv,
    licenceFirmware,
    copyrightsDebian,
    copyrightsCentos,
    gapAfterDocuments,
    exit,
    prompt,
    information,
    notice
};
}  // namespace legal_menu

/// The menus by their index.
enum menu_index_t : std::uint32_t { index_main, index_legal };

/// How the title of both menus begins; the firmware's release follows when it is drawn.
inline constexpr const char* titleBeginning = "This tool will update Varn FW --> Rel. ";

/// @return the menu with nothing highlighted and without a callback
menu_elem_t makeMainMenu();
menu_elem_t makeLegalMenu();

/// One choice of the scripted walk.
struct walk_step_t {
    menu_index_t menu;
    menu_item_t target;  ///< the key of a line; the title's stands for where key-up leads at first
};

/// @return the choices of the walk through both menus. A line that a menu does not have is passed
/// over, so that one list serves menus with and without the emergency flash.
std::span<const walk_step_t> scriptedWalk();
