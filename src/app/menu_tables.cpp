#include "app/menu_tables.hpp"

#include <array>
#include <cstddef>

namespace {

constexpr std::int32_t red = 1;
constexpr std::int32_t blue = 4;
constexpr std::int32_t white = 7;
constexpr std::int32_t terminalDefault = -1;

/// The kinds of lines that menus are made of.
struct line_kind_t {
    std::uint8_t prompt;
    std::uint8_t emphasis;
    std::uint8_t selectable;
    std::int32_t foreground;
    std::int32_t background;
};

constexpr line_kind_t title{0, 1, 0, white, blue};
constexpr line_kind_t entry{0, 0, 1, terminalDefault, terminalDefault};
constexpr line_kind_t blank{0, 0, 0, terminalDefault, terminalDefault};
constexpr line_kind_t prompt{1, 1, 0, terminalDefault, terminalDefault};
constexpr line_kind_t information{0, 0, 0, red, terminalDefault};
constexpr line_kind_t notice{0, 0, 0, blue, terminalDefault};

struct row_t {
    menu_item_t key;
    const char* text;
    line_kind_t kind;
};

constexpr const char* noticeText = "(c) 2026 Varn Firmware Tools";

constexpr std::array mainRows{
    row_t{main_menu::title, titleBeginning, title},
    row_t{main_menu::normalFlash, "Normal Flash of inactive Image with version validation", entry},
    row_t{main_menu::forcedFlash1st, "Forced Normal Flash of 1st Image", entry},
    row_t{main_menu::forcedFlash2nd, "Forced Normal Flash of 2nd Image", entry},
    row_t{main_menu::emergencyFlash, "Emergency Flash of both Images", entry},
    row_t{main_menu::gapAfterFlashes, "", blank},
    row_t{main_menu::readme, "Readme", entry},
    row_t{main_menu::legalDocuments, "Legal Documents", entry},
    row_t{main_menu::gapAfterDocuments, "", blank},
    row_t{main_menu::reboot, "Reboot Varn", entry},
    row_t{main_menu::exit, "Exit", entry},
    row_t{main_menu::prompt, "> ", prompt},
    row_t{main_menu::information, "", information},
    row_t{main_menu::notice, noticeText, notice},
};

constexpr std::array legalRows{
    row_t{legal_menu::title, titleBeginning, title},
    row_t{legal_menu::heading, "#LEGAL DOCUMENTS", title},
    row_t{legal_menu::eula, "EULA", entry},
    row_t{legal_menu::licenceFlashtools, "TPL Flashtools", entry},
    row_t{legal_menu::licenceMorv, "TPL MORV Library", entry},
    row_t{legal_menu::licenceFirmware, "TPL Firmware", entry},
    row_t{legal_menu::copyrightsCentos, "Centos Copyrights", entry},
    row_t{legal_menu::gapAfterDocuments, "", blank},
    row_t{legal_menu::exit, "Exit", entry},
    row_t{legal_menu::prompt, "> ", prompt},
    row_t{legal_menu::information, "", information},
    row_t{legal_menu::notice, noticeText, notice},
};

constexpr std::array walk{
    walk_step_t{index_main, main_menu::title},
    walk_step_t{index_main, main_menu::forcedFlash1st},
    walk_step_t{index_main, main_menu::forcedFlash2nd},
    walk_step_t{index_main, main_menu::normalFlash},
    walk_step_t{index_main, main_menu::emergencyFlash},
    walk_step_t{index_main, main_menu::readme},
    walk_step_t{index_main, main_menu::legalDocuments},
    walk_step_t{index_legal, legal_menu::title},
    walk_step_t{index_legal, legal_menu::licenceFlashtools},
    walk_step_t{index_legal, legal_menu::eula},
    walk_step_t{index_legal, legal_menu::licenceMorv},
    walk_step_t{index_legal, legal_menu::licenceFirmware},
    walk_step_t{index_legal, legal_menu::copyrightsCentos},
    walk_step_t{index_legal, legal_menu::copyrightsDebian},
    walk_step_t{index_legal, legal_menu::exit},
    walk_step_t{index_main, main_menu::normalFlash},
    walk_step_t{index_main, main_menu::reboot},
    walk_step_t{index_main, main_menu::exit},
};

template <std::size_t count>
menu_elem_t makeMenu(const std::array<row_t, count>& rows, menu_item_t informationLine) {
    menu_elem_t menu;
    menu.informationLine = informationLine;
    for (const auto& [key, text, kind] : rows) {
        menu.lines[key] = {
            text, 0, kind.prompt, kind.emphasis, kind.selectable, kind.foreground, kind.background};
    }
    return menu;
}

}  // namespace

menu_elem_t makeMainMenu() { return makeMenu(mainRows, main_menu::information); }

menu_elem_t makeLegalMenu() { return makeMenu(legalRows, legal_menu::information); }

std::span<const walk_step_t> scriptedWalk() { return walk; }
