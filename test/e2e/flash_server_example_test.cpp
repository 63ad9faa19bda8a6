#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

#include "harness/package_folder.hpp"
#include "harness/tool_test.hpp"

namespace {

/// doc/examples/flash-server.exp in front of the package that script/demo shows.
class flash_server_example_test : public testing::Test {
protected:
    struct outcome_t {
        int status;
        std::string printed;

        bool operator==(const outcome_t&) const = default;
        friend std::ostream& operator<<(std::ostream& stream, const outcome_t& outcome) {
            return stream << outcome.status << ", " << outcome.printed;
        }
    };

    static constexpr const char* example = EXAMPLES_FOLDER "/flash-server.exp";

    void assemble(const std::string& server = "server", const std::string& state = "step=0") {
        const std::string command = DEMO_FOLDER "/assemble " + programUnderTest() + " " +
                                    folder(server).string() + " " + state;
        ASSERT_EQ(0, std::system(command.c_str()));
    }

    std::filesystem::path folder(const std::string& server = "server") const {
        return package.root() / server;
    }

    static outcome_t run(const std::string& command) {
        std::FILE* output = popen((command + " 2>&1").c_str(), "r");
        std::string printed;
        for (int byte = std::fgetc(output); byte != EOF; byte = std::fgetc(output)) {
            printed.push_back(static_cast<char>(byte));
        }
        return {WEXITSTATUS(pclose(output)), printed};
    }

    outcome_t flash(const std::string& options = "") const {
        return run(std::string(example) + " " + options + " sh -c 'cd " +
                   (folder() / "tool").string() + " && exec ./varnmenu'");
    }

    /// The core program does this when it is asked to flash.
    void letCoreProgram(const std::string& script) const {
        std::ofstream(folder() / "tool/varnflash")
            << "#!/bin/sh\n[ \"$1\" != /ispfr ] || exit 0\n" + script + "\n";
    }

    bool stateHolds(const std::string& line) const {
        std::ifstream file(folder() / "tool/varnflash.state");
        std::ostringstream text;
        text << file.rdbuf();
        return text.str().find(line + "\n") != std::string::npos;
    }

    package_folder package;
};

}  // namespace

TEST_F(flash_server_example_test, FlashesTheInactiveImage) {
    assemble();
    EXPECT_EQ((outcome_t{0,
                         "server: flashed: Done. Image 2 becomes active with the next reboot of "
                         "the Varn.\n"}),
              flash());
    EXPECT_TRUE(stateHolds("release2=2.41"));
    EXPECT_TRUE(stateHolds("release1=2.10"));
}

// Without the emergency flash Exit has another number.
TEST_F(flash_server_example_test, LeavesByExitWhicheverNumberItHas) {
    for (const char* state : {"ispfr=0 step=0", "ispfr=55 step=0"}) {
        assemble("server", state);
        const outcome_t outcome = flash("-v");
        EXPECT_EQ(0, outcome.status);
        EXPECT_NE(std::string::npos, outcome.printed.find("due to user normal exit"))
            << outcome.printed;
    }
}

TEST_F(flash_server_example_test, CarriesOutTheEntryThatItIsTold) {
    assemble();
    EXPECT_EQ(0, flash("-e 'Forced Normal Flash of 1st'").status);
    EXPECT_TRUE(stateHolds("release1=2.41"));
    EXPECT_EQ((outcome_t{0, "rack 7: flashed: The Varn is up. Active image: 1\n"}),
              flash("-n 'rack 7' -e 'Reboot Varn' -d 'The Varn is up'"));
}

TEST_F(flash_server_example_test, TellsThatTheCoreProgramRefuses) {
    assemble("server", "step=0 release1=2.41");
    EXPECT_EQ(
        (outcome_t{1, "server: refused: varnflash: release 2.41 runs already, nothing to do\n"}),
        flash());
}

TEST_F(flash_server_example_test, TellsThatTheMenuHasNoSuchEntry) {
    assemble("server", "step=0 ispfr=55");
    EXPECT_EQ((outcome_t{1, "server: refused: the menu has no entry 'Emergency'\n"}),
              flash("-e Emergency"));
}

TEST_F(flash_server_example_test, TellsThatThePackageDoesNotStart) {
    assemble();
    std::filesystem::remove(folder() / "varn-2.41.bin");
    EXPECT_EQ((outcome_t{3,
                         "server: not started: [CRIT] Invalid argument error: Firmware file not "
                         "found: varn-2.41.bin\n"}),
              flash());
}

TEST_F(flash_server_example_test, TellsThatTheServerCannotBeReached) {
    EXPECT_EQ((outcome_t{3, "server: not started: the command has ended: No route to host\n"}),
              run(std::string(example) + " sh -c 'echo No route to host; exit 255'"));
    EXPECT_EQ((outcome_t{3, "server: not started: no menu within 1 seconds\n"}),
              run(std::string(example) + " -s 1 sleep 10"));
}

TEST_F(flash_server_example_test, LetsAFlashGoOnThatTakesTooLong) {
    assemble("server", "step=0.06");
    EXPECT_EQ((outcome_t{4, "server: unclear: the core program has not ended within 1 seconds\n"}),
              flash("-t 1"));
    EXPECT_FALSE(stateHolds("release2=2.41"));
    for (int rests = 0; rests < 300 && !stateHolds("release2=2.41"); ++rests) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_TRUE(stateHolds("release2=2.41"));
}

TEST_F(flash_server_example_test, TellsThatTheOutcomeIsNotKnown) {
    assemble();
    letCoreProgram("kill -KILL $$");
    EXPECT_EQ((outcome_t{4, "server: unclear: [WARN] Command cannot be executed properly\n"}),
              flash());
    letCoreProgram("echo Erasing; kill -KILL $PPID");
    EXPECT_EQ((outcome_t{4, "server: unclear: the connection is gone: Erasing\n"}), flash());
}

TEST_F(flash_server_example_test, DrivesManyServers) {
    assemble("one");
    assemble("two", "step=0 release1=2.41");
    const outcome_t outcome =
        run("printf '%s\\n' one two | xargs -P 2 -I HOST " + std::string(example) +
            " -n HOST sh -c 'cd " + package.root().string() + "/HOST/tool && exec ./varnmenu'");
    EXPECT_EQ(123, outcome.status);
    EXPECT_NE(std::string::npos, outcome.printed.find("one: flashed: "));
    EXPECT_NE(std::string::npos, outcome.printed.find("two: refused: "));
}

TEST_F(flash_server_example_test, ExplainsItsOptions) {
    for (const char* words : {"", "-x true", "-n", "-t soon true"}) {
        const outcome_t outcome = run(std::string(example) + " " + words);
        EXPECT_EQ(2, outcome.status);
        EXPECT_EQ(0U, outcome.printed.find("usage: flash-server.exp "));
    }
}
