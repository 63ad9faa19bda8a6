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
    void flash(int number, const std::string& lastLine) {
        choose(number);
        session->awaitScreen(lastLine);
        session->press("\r");
        awaitMenu(std::to_string(number));
    }
};

}  // namespace

TEST_F(simulated_package_test, FlashesTheInactiveImageAndRebootsIntoIt) {
    startMenu();
    EXPECT_EQ("       This tool will update Varn FW --> Rel. 2.41", session->screen().row(0));
    flash(1, "Done. Image 2 becomes active");
    EXPECT_NE(std::string::npos, session->output().find("SIMULATION: no hardware is written."));
    EXPECT_NE(std::string::npos, session->output().find("Verifying 100%"));
    EXPECT_TRUE(stateHolds("release2=2.41"));
    EXPECT_TRUE(stateHolds("release1=2.10"));
    EXPECT_TRUE(stateHolds("active=1"));

    flash(7, "The Varn is up. Active image: 2");
    EXPECT_TRUE(stateHolds("active=2"));

    choose(1);
    session->awaitScreen("release 2.41 runs already, nothing to do");
}

TEST_F(simulated_package_test, FlashesEachImageByForce) {
    startMenu();
    flash(2, "Done. Image 1 becomes active");
    EXPECT_TRUE(stateHolds("release1=2.41"));
    EXPECT_TRUE(stateHolds("release2=2.10"));
    flash(3, "Done. Image 2 becomes active");
    EXPECT_TRUE(stateHolds("release2=2.41"));
}

TEST_F(simulated_package_test, FlashesBothImagesInAnEmergency) {
    startMenu();
    flash(4, "Done. Image 1 becomes active");
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
    choose(5);
    session->awaitScreen("README: Varn firmware package 2.41 (simulated)");
    session->type("q");
    awaitMenu("5");
    choose(6);
    session->awaitScreen("#LEGAL");
    for (const auto& [number, title] : {std::pair{1, "END USER LICENCE"},
                                        {2, "FLASH TOOLS"},
                                        {3, "MORV LIBRARY"},
                                        {4, "THIRD PARTY LICENCES: FIRMWARE"},
                                        {5, "COPYRIGHTS"}}) {
        choose(number);
        session->awaitScreen(title);
        session->type("q");
        awaitMenu(std::to_string(number));
    }
}
