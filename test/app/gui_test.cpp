#include "app/gui.hpp"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

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

}  // namespace

TEST_F(gui_test, DropsTheEmergencyFlashWhenTheCoreProgramSaysSo) {
    package.let("varnflash", "exit 55");
    EXPECT_EQ("gone", with([](open_gui& application) {
                  return std::string(application.menus.at(0).lines.contains(4) ? "there" : "gone");
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
    EXPECT_EQ("1 7 0|0 7 0", with([](open_gui& application) {
                  application.menus.at(0).selected = 7;
                  application.onMainMenuSelect(7);
                  const std::string opened = selectedKeys(application);
                  application.menus.at(1).selected = 9;
                  application.onLegalMenuSelect(9);
                  return opened + "|" + selectedKeys(application);
              }));
}

TEST_F(gui_test, EndsAtExitInTheMainMenu) {
    EXPECT_EQ("user normal exit", with([](open_gui& application) {
                  application.menus.at(0).selected = 10;
                  return thrown<menu_exception>([&] { application.onMainMenuSelect(10); });
              }));
}

// Either callback knows the Exit line of whichever menu it serves.
TEST_F(gui_test, KnowsExitInBothMenusFromBothCallbacks) {
    EXPECT_EQ("user normal exit", with([](open_gui& application) {
                  application.currentMenu = 1;
                  application.menus.at(1).selected = 9;
                  return thrown<menu_exception>([&] { application.onMainMenuSelect(9); });
              }));
    EXPECT_EQ("0 0 0", with([](open_gui& application) {
                  application.menus.at(0).selected = 10;
                  application.onLegalMenuSelect(10);
                  return selectedKeys(application);
              }));
}

TEST_F(gui_test, TakesALineThatTheMenuDoesNotHoldForNoExit) {
    EXPECT_EQ("Flashtools operation not supported", with([](open_gui& application) {
                  application.menus.at(0).lines.erase(10);
                  application.menus.at(0).selected = 10;
                  return thrown<std::runtime_error>([&] { application.onMainMenuSelect(10); });
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

// Nobody has pressed its ENTERs: there is nothing of theirs to be thrown away.
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
    EXPECT_EQ("UE DE DE UUE DDDE DE DE  UE ", with([](open_gui& application) {
                  return script(application, application.menus.at(0), {0, 2, 3, 1, 4, 6, 7, 99, 6});
              }));
    EXPECT_EQ("UE DE UE DDE DE DE  DE ", with([](open_gui& application) {
                  return script(application, application.menus.at(1), {0, 3, 2, 4, 5, 7, 6, 9});
              }));
}

// A line that cannot be selected is passed by, and the nearest one below it confirmed.
TEST_F(gui_test, ScriptsTheKeysToTheLineAfterATargetThatCannotBeSelected) {
    EXPECT_EQ("DDDDDE ", with([](open_gui& application) {
                  return script(application, application.menus.at(0), {5});
              }));
}

// There is no way further up or down: what is highlighted then is confirmed.
TEST_F(gui_test, ScriptsTheKeysNoFurtherThanTheMenuGoes) {
    EXPECT_EQ("DDDDDDDDE UUUUUUUE ", with([](open_gui& application) {
                  return script(application, application.menus.at(0), {13, 0});
              }));
}

// The main menu takes 2+2+2+3+4+2+2 keys, the legal one 2+2+2+3+2+2+2, the main one 6+7+2. Without
// the emergency flash its 4 are left out, and 2 lines are one key farther apart.
TEST_F(gui_test, QueuesTheScriptedWalkWithoutTouchingTheMenus) {
    for (const auto& [status, expected] : {std::pair{0, "47 0 0 0"}, {55, "43 0 0 0"}}) {
        package.let("varnflash", "exit " + std::to_string(status));
        const auto walk = [](open_gui& application) {
            return std::to_string(application.scriptedInputs.size()) + " " +
                   selectedKeys(application);
        };
        EXPECT_EQ(expected, with(walk, true));
    }
}
