#include "app/gui.hpp"

#include "app/menu_tables.hpp"

gui::gui(bool evaluate)
    : flashtools(evaluate, {{main_menu::normalFlash, op_inactive},
                            {main_menu::forcedFlash1st, op_force_1st},
                            {main_menu::forcedFlash2nd, op_force_2nd},
                            {main_menu::emergencyFlash, op_emergency},
                            {main_menu::reboot, op_reboot}}),
      readtxt(evaluate, {{main_menu::readme, doc_readme}},
              {{legal_menu::eula, doc_eula},
               {legal_menu::licenceFlashtools, doc_licence_flashtools},
               {legal_menu::licenceMorv, doc_licence_morv},
               {legal_menu::licenceFirmware, doc_licence_firmware},
               {legal_menu::copyrightsCentos, doc_copyrights_centos},
               {legal_menu::copyrightsDebian, doc_copyrights_debian}}),
      evalMode(evaluate) {
    settleBeforeWait = [this] { return repaint(); };
    menus.push_back(makeMainMenu());
    menus.back().callback = [this](menu_item_t item) { onMainMenuSelect(item); };
    menus.push_back(makeLegalMenu());
    menus.back().callback = [this](menu_item_t item) { onLegalMenuSelect(item); };
    // Before the check for root: the scripted walk, which takes its place, needs the final menu.
    if (checkIspfr()) {
        menus.front().lines.erase(main_menu::emergencyFlash);
    }
    if (evalMode) {
        runEvaluation();
    } else {
        checkAdministrator();
    }
}
