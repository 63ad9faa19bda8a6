#pragma once

#include "app/menu.hpp"

/// The keys of the main menu's lines that do something.
namespace main_menu {
inline constexpr menu_item_t normalFlash = 1;
inline constexpr menu_item_t forcedFlash1st = 2;
inline constexpr menu_item_t forcedFlash2nd = 3;
inline constexpr menu_item_t emergencyFlash = 4;
inline constexpr menu_item_t readme = 6;
inline constexpr menu_item_t legalDocuments = 7;
inline constexpr menu_item_t reboot = 9;
inline constexpr menu_item_t exit = 10;
}  // namespace main_menu

/// The keys of the legal documents menu's lines that do something. 6 is kept free: it stands for
/// the Debian copyrights, which no line offers.
namespace legal_menu {
inline constexpr menu_item_t eula = 2;
inline constexpr menu_item_t licenceFlashtools = 3;
inline constexpr menu_item_t licenceMorv = 4;
inline constexpr menu_item_t licenceFirmware = 5;
inline constexpr menu_item_t copyrightsDebian = 6;
inline constexpr menu_item_t copyrightsCentos = 7;
inline constexpr menu_item_t exit = 9;
}  // namespace legal_menu

/// How the title of both menus begins; the firmware's release follows when it is drawn.
inline constexpr const char* titleBeginning = "This tool will update Varn FW --> Rel. ";

/// @return the menu with nothing highlighted and without a callback
menu_elem_t makeMainMenu();
menu_elem_t makeLegalMenu();
