#include <fstream>

#include "e2e/demo_test.hpp"

namespace {

/// The menu on the simulated package, with the programs of this system.
class simulated_package_test : public demo_test {
protected:
    simulated_package_test() {
        assemble();
        program.path = (folder() / "tool/varnmenu").string();
        program.arguments = {"./varnmenu"};
        program.environment["PATH"] = "/usr/bin:/bin";
        program.directory = (folder() / "tool").string();
    }

    /// Carries out an entry of the main menu up to the core program's last line.
    void flash(menu_item_t item, const std::string& lastLine) {
        choose(mainScreen().number(item));
        session->awaitScreen(lastLine);
        session->press("\r");
        awaitMenu(mainScreen().key(item));
    }

    void show(int number, const std::string& title) {
        choose(number);
        session->awaitScreen(title);
        session->type("q");
        awaitMenu(std::to_string(number));
    }
};

}  // namespace

TEST_F(simulated_package_test, FlashesTheInactiveImageAndRebootsIntoIt) {
    startMenu();
    EXPECT_EQ("       This tool will update Varn FW --> Rel. 2.41", session->screen().row(0));
    flash(main_menu::normalFlash, "Done. Image 2 becomes active");
    EXPECT_NE(std::string::npos, session->output().find("SIMULATION: no hardware is written."));
    EXPECT_NE(std::string::npos, session->output().find("Verifying 100%"));
    EXPECT_TRUE(stateHolds("release2=2.41"));
    EXPECT_TRUE(stateHolds("release1=2.10"));
    EXPECT_TRUE(stateHolds("active=1"));

    flash(main_menu::reboot, "The Varn is up. Active image: 2");
    EXPECT_TRUE(stateHolds("active=2"));

    choose(1);
    session->awaitScreen("release 2.41 runs already, nothing to do");
}

TEST_F(simulated_package_test, FlashesEachImageByForce) {
    startMenu();
    flash(main_menu::forcedFlash1st, "Done. Image 1 becomes active");
    EXPECT_TRUE(stateHolds("release1=2.41"));
    EXPECT_TRUE(stateHolds("release2=2.10"));
    flash(main_menu::forcedFlash2nd, "Done. Image 2 becomes active");
    EXPECT_TRUE(stateHolds("release2=2.41"));
}

TEST_F(simulated_package_test, FlashesBothImagesInAnEmergency) {
    startMenu();
    flash(main_menu::emergencyFlash, "Done. Image 1 becomes active");
    EXPECT_TRUE(stateHolds("release1=2.41"));
    EXPECT_TRUE(stateHolds("release2=2.41"));
}

TEST_F(simulated_package_test, SaysWhatIsWrongWithAnImage) {
    std::ofstream(folder() / "varn-2.41.bin") << "something else\n";
    startMenu();
    choose(2);
    session->awaitScreen("varnflash: ../varn-2.41.bin is not a Varn image");
}

TEST_F(simulated_package_test, ShowsItsDocumentsWithTheSystemsPager) {
    startMenu();
    show(mainScreen().number(main_menu::readme), "README: Varn firmware package 2.41 (simulated)");
    choose(mainScreen().number(main_menu::legalDocuments));
    session->awaitScreen("#LEGAL");
    for (const auto& [item, title] :
         {std::pair{legal_menu::eula, "END USER LICENCE"},
          {legal_menu::licenceFlashtools, "FLASH TOOLS"},
          {legal_menu::licenceMorv, "MORV LIBRARY"},
          {legal_menu::licenceFirmware, "THIRD PARTY LICENCES: FIRMWARE"},
          {legal_menu::copyrightsCentos, "COPYRIGHTS"}}) {
        show(legalScreen().number(item), title);
    }
}
