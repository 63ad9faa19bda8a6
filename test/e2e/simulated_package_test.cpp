#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "harness/tool_test.hpp"

namespace {

/// The package that script/demo shows, with the programs of this system.
class simulated_package_test : public tool_test {
protected:
    void assemble(const std::string& state = "step=0") {
        const std::string command =
            DEMO_FOLDER "/assemble " + program.path + " " + folder().string() + " " + state;
        ASSERT_EQ(0, std::system(command.c_str()));
        program.path = (folder() / "tool/varnmenu").string();
        program.arguments = {"./varnmenu"};
        program.environment["PATH"] = "/usr/bin:/bin";
        program.directory = (folder() / "tool").string();
    }

    std::filesystem::path folder() const { return package.root() / "simulated"; }

    std::string state() const {
        std::ifstream file(folder() / "tool/varnflash.state");
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

    bool stateHolds(const std::string& line) const {
        return state().find(line + "\n") != std::string::npos;
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
    assemble();
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
    assemble();
    startMenu();
    flash(2, "Done. Image 1 becomes active");
    EXPECT_TRUE(stateHolds("release1=2.41"));
    EXPECT_TRUE(stateHolds("release2=2.10"));
    flash(3, "Done. Image 2 becomes active");
    EXPECT_TRUE(stateHolds("release2=2.41"));
}

TEST_F(simulated_package_test, FlashesBothImagesInAnEmergency) {
    assemble();
    startMenu();
    flash(4, "Done. Image 1 becomes active");
    EXPECT_TRUE(stateHolds("release1=2.41"));
    EXPECT_TRUE(stateHolds("release2=2.41"));
}

TEST_F(simulated_package_test, CanBeAssembledWithoutEmergencyFlash) {
    assemble("ispfr=55");
    startMenu();
    EXPECT_FALSE(session->screen().contains("Emergency"));
    EXPECT_TRUE(session->screen().contains("[7] Exit"));
}

TEST_F(simulated_package_test, SaysWhatIsWrongWithAnImage) {
    assemble();
    std::ofstream(folder() / "varn-2.41.bin") << "something else\n";
    startMenu();
    choose(2);
    session->awaitScreen("varnflash: ../varn-2.41.bin is not a Varn image");
}

TEST_F(simulated_package_test, FlashesToTheEndWhenTheConnectionDrops) {
    assemble("step=0.01");
    startMenu();
    choose(2);
    session->awaitScreen("Erasing");
    session->hangUp();
    EXPECT_EQ(128 + SIGHUP, awaitEnd());
    EXPECT_TRUE(stateHolds("release1=2.41"));
}

TEST_F(simulated_package_test, ShowsItsDocumentsWithTheSystemsPager) {
    assemble();
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

TEST_F(simulated_package_test, IsWalkedThroughByTheEvaluationMode) {
    assemble();
    program.arguments.push_back("--eval");
    start();
    EXPECT_EQ(0, awaitEnd());
    EXPECT_EQ("Exitting program 'varnmenu' due to user normal exit\n", session->screen().text());
    EXPECT_EQ(std::string::npos, session->output().find("[WARN]"));
    EXPECT_FALSE(stateHolds("release1=2.41"));
}
