#include "app/gui.hpp"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "app/menu_tables.hpp"
#include "harness/terminal_session.hpp"
#include "harness/test_surroundings.hpp"
#include "support/menu_exception.hpp"

namespace {

struct open_gui : gui {
    using gui::gui;
    using stream::currentInput;
    using stream::scriptedInputs;
};

class gui_test : public testing::Test {
protected:
    /// What the call returns for a gui on a terminal, in the package.
    std::string with(const std::function<std::string(open_gui&)>& call, bool evaluate = false) {
        return terminal_session([&] {
                   const inside_package inside(package);
                   open_gui application(evaluate);
                   return call(application);
               })
            .result();
    }

    package_folder package;
};

std::string selectedKeys(gui& application) {
    return std::to_string(application.currentMenu) + " " +
           std::to_string(application.menus.at(0).selected) + " " +
           std::to_string(application.menus.at(1).selected);
}

/// The keys that lead to targets one after the other, as U, D and E.
std::string script(open_gui& application, menu_elem_t menu, const std::vector<int>& targets) {
    std::string keys;
    for (const int target : targets) {
        application.scriptSelection(menu, target);
        for (const std::string& input : application.scriptedInputs) {
            keys += input == application.keySequence(0)   ? "U"
                    : input == application.keySequence(1) ? "D"
                    : input == "\n"                       ? "E"
                                                          : "?";
        }
        application.scriptedInputs.clear();
        keys += " ";
    }
    return keys;
}

/// title, 1, 2, blank, 4, blank, 6, prompt
menu_elem_t smallMenu() {
    menu_elem_t menu;
    for (menu_item_t item = 0; item < 8; ++item) {
        const bool isEntry = item == 1 || item == 2 || item == 4 || item == 6;
        menu.lines[item].selectable = isEntry ? 1 : 0;
    }
    return menu;
}

/// @return the lines that the queued keys confirm, menu by menu as the walk has them
std::string confirmed(open_gui& application) {
    std::vector<menu_elem_t> menus = application.menus;
    std::string lines;
    for (const walk_step_t& step : scriptedWalk()) {
        menu_elem_t& menu = menus.at(step.menu);
        if (!menu.lines.contains(step.target)) {
            continue;
        }
        for (std::string input; input != "\n";) {
            input = application.scriptedInputs.front();
            application.scriptedInputs.pop_front();
            if (input == application.keySequence(term_key_up)) {
                menu.selected = lineAbove(menu, menu.selected);
            } else if (input == application.keySequence(term_key_down)) {
                menu.selected = lineBelow(menu, menu.selected);
            }
        }
        lines += std::to_string(menu.selected) + " ";
    }
    return lines + std::to_string(application.scriptedInputs.size()) + " left ";
}

/// @return the lines of the walk that the menus have, in the form of confirmed()
std::string walkByTheTables(bool hasEmergencyFlash) {
    std::string lines;
    for (const auto& [menu, target] : scriptedWalk()) {
        const menu_elem_t table = menu == index_main ? makeMainMenu() : makeLegalMenu();
        const bool isLeftOut =
            menu == index_main && target == main_menu::emergencyFlash && !hasEmergencyFlash;
        if (table.lines.contains(target) && !isLeftOut) {
            lines += std::to_string(target == 0 ? lineBelow(table, 0) : target) + " ";
        }
    }
    return lines + "0 left";
}

}  // namespace

TEST_F(gui_test, DropsTheEmergencyFlashWhenTheCoreProgramSaysSo) {
    package.let("varnflash", "exit 55");
    EXPECT_EQ("gone", with([](open_gui& application) {
                  return std::string(
                      application.menus.at(0).lines.contains(main_menu::emergencyFlash) ? "there"
                                                                                        : "gone");
              }));
    EXPECT_EQ("./varnflash /ispfr", package.commandLines().at(0));
}

TEST_F(gui_test, RefusesAnyoneButTheRealRoot) {
    const auto refused = [](uid_t real, uid_t effective) {
        return terminal_session([=] {
                   if (setresuid(real, effective, 0) != 0) {
                       return std::string("setresuid failed");
                   }
                   return thrown<menu_exception>([] { gui::checkAdministrator(); });
               })
            .result();
    };
    EXPECT_EQ("program started without administrator privileges", refused(65534, 0));
    EXPECT_EQ("nothing thrown", refused(0, 65534));
}

TEST_F(gui_test, OpensAndLeavesTheLegalMenu) {
    const std::string legal = std::to_string(main_menu::legalDocuments);
    EXPECT_EQ("1 " + legal + " 0|0 " + legal + " 0", with([](open_gui& application) {
                  application.menus.at(0).selected = main_menu::legalDocuments;
                  application.onMainMenuSelect(main_menu::legalDocuments);
                  const std::string opened = selectedKeys(application);
                  application.menus.at(1).selected = legal_menu::exit;
                  application.onLegalMenuSelect(legal_menu::exit);
                  return opened + "|" + selectedKeys(application);
              }));
}

TEST_F(gui_test, EndsAtExitInTheMainMenu) {
    EXPECT_EQ(
        "user normal exit", with([](open_gui& application) {
            application.menus.at(0).selected = main_menu::exit;
            return thrown<menu_exception>([&] { application.onMainMenuSelect(main_menu::exit); });
        }));
}

// Both callbacks know the Exit lines of both menus.
TEST_F(gui_test, KnowsExitInBothMenusFromBothCallbacks) {
    EXPECT_EQ(
        "user normal exit", with([](open_gui& application) {
            application.currentMenu = 1;
            application.menus.at(1).selected = legal_menu::exit;
            return thrown<menu_exception>([&] { application.onMainMenuSelect(legal_menu::exit); });
        }));
    EXPECT_EQ("0 0 0", with([](open_gui& application) {
                  application.menus.at(0).selected = main_menu::exit;
                  application.onLegalMenuSelect(main_menu::exit);
                  return selectedKeys(application);
              }));
}

TEST_F(gui_test, TakesALineThatTheMenuDoesNotHoldForNoExit) {
    EXPECT_EQ("Flashtools operation not supported", with([](open_gui& application) {
                  application.menus.at(0).lines.erase(main_menu::exit);
                  application.menus.at(0).selected = main_menu::exit;
                  return thrown<std::runtime_error>(
                      [&] { application.onMainMenuSelect(main_menu::exit); });
              }));
}

TEST_F(gui_test, ChecksTheMenuIndex) {
    EXPECT_TRUE(with([](open_gui& application) {
                    application.currentMenu = 2;
                    return thrown<std::out_of_range>([&] { application.showMenuOnce(); });
                }).starts_with("vector::_M_range_check"));
}

TEST_F(gui_test, ChecksTheHeadersLines) {
    for (const auto field : {&menu_elem_t::headerLine, &menu_elem_t::informationLine}) {
        EXPECT_EQ("map::at", with([field](open_gui& application) {
                      application.menus.at(0).*field = 99;
                      return thrown<std::out_of_range>([&] { application.showMenuOnce(); });
                  }));
    }
}

TEST_F(gui_test, SaysThatThereWasNoInput) {
    EXPECT_EQ("Cannot extract user input", with([](open_gui& application) {
                  const typed_input nothing("");
                  return thrown<std::runtime_error>([&] { application.showMenuOnce(); });
              }));
}

// Nobody has pressed the ENTERs of the walk, so no keys are discarded.
TEST_F(gui_test, LeavesTheKeyboardAloneInTheScriptedWalk) {
    terminal_session session([this] {
        const inside_package inside(package);
        open_gui application(true);
        application.menus.at(0).callback = [](menu_item_t) {};
        pollfd keyboard{STDIN_FILENO, POLLIN, 0};
        poll(&keyboard, 1, -1);
        application.showMenuOnce();
        int waiting = 0;
        ioctl(STDIN_FILENO, FIONREAD, &waiting);
        return selectedKeys(application) + ", waiting: " + std::to_string(waiting);
    });
    session.type("x");
    EXPECT_EQ("0 1 0, waiting: 1", session.result());
}

TEST_F(gui_test, ScriptsTheKeysToATarget) {
    EXPECT_EQ("UE DE UE DDE DE  UE ", with([](open_gui& application) {
                  return script(application, smallMenu(), {0, 2, 1, 4, 6, 99, 4});
              }));
}

// A line that cannot be selected is passed by, and the nearest one below it confirmed.
TEST_F(gui_test, ScriptsTheKeysToTheLineAfterATargetThatCannotBeSelected) {
    EXPECT_EQ("DDDE ",
              with([](open_gui& application) { return script(application, smallMenu(), {3}); }));
}

// The highlight goes no further up or down: the line that is highlighted then is confirmed.
TEST_F(gui_test, ScriptsTheKeysNoFurtherThanTheMenuGoes) {
    EXPECT_EQ("DDDDE UUUE ", with([](open_gui& application) {
                  return script(application, smallMenu(), {7, 0});
              }));
}

TEST_F(gui_test, QueuesTheScriptedWalkWithoutTouchingTheMenus) {
    for (const auto& [status, hasEmergencyFlash] : {std::pair{0, true}, {55, false}}) {
        package.let("varnflash", "exit " + std::to_string(status));
        EXPECT_EQ(walkByTheTables(hasEmergencyFlash) + " 0 0 0",
                  with(
                      [](open_gui& application) {
                          return confirmed(application) + selectedKeys(application);
                      },
                      true));
    }
}
