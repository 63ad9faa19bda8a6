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

/// flash-server.exp in front of the package that script/demo shows.
class flash_server_test : public testing::Test {
protected:
    struct outcome_t {
        int status;
        std::string printed;

        bool operator==(const outcome_t&) const = default;
        friend std::ostream& operator<<(std::ostream& stream, const outcome_t& outcome) {
            return stream << outcome.status << ", " << outcome.printed;
        }
    };

    static constexpr const char* flashServer =
        FLEET_FOLDER "/roles/varn_firmware/files/flash-server.exp";

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
        return run(std::string(flashServer) + " " + options + " sh -c 'cd " +
                   (folder() / "tool").string() + " && exec ./varnmenu'");
    }

    /// The core program does this when it is asked to flash.
    void letCoreProgram(const std::string& script) const {
        std::ofstream(folder() / "tool/varnflash")
            << "#!/bin/sh\n[ \"$1\" != /ispfr ] || exit 0\n" + script + "\n";
    }

    static std::string contentOf(const std::filesystem::path& path) {
        std::ifstream file(path);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

    bool stateHolds(const std::string& line) const {
        return contentOf(folder() / "tool/varnflash.state").find(line + "\n") != std::string::npos;
    }

    package_folder package;
};

}  // namespace

TEST_F(flash_server_test, FlashesTheInactiveImage) {
    assemble();
    EXPECT_EQ((outcome_t{0,
                         "server: flashed: Done. Image 2 becomes active with the next reboot of "
                         "the Varn.\n"}),
              flash());
    EXPECT_TRUE(stateHolds("release2=2.41"));
    EXPECT_TRUE(stateHolds("release1=2.10"));
}

// Without the emergency flash Exit has another number.
TEST_F(flash_server_test, LeavesByExitWhicheverNumberItHas) {
    for (const char* state : {"ispfr=0 step=0", "ispfr=55 step=0"}) {
        assemble("server", state);
        const outcome_t outcome = flash("-v");
        EXPECT_EQ(0, outcome.status);
        EXPECT_NE(std::string::npos, outcome.printed.find("due to user normal exit"))
            << outcome.printed;
    }
}

TEST_F(flash_server_test, CarriesOutTheEntryThatItIsTold) {
    assemble();
    EXPECT_EQ(0, flash("-e 'Forced Normal Flash of 1st'").status);
    EXPECT_TRUE(stateHolds("release1=2.41"));
    EXPECT_EQ((outcome_t{0, "rack 7: flashed: The Varn is up. Active image: 1\n"}),
              flash("-n 'rack 7' -e 'Reboot Varn' -d 'The Varn is up'"));
}

TEST_F(flash_server_test, TellsThatTheCoreProgramRefuses) {
    assemble("server", "step=0 release1=2.41");
    EXPECT_EQ(
        (outcome_t{1, "server: refused: varnflash: release 2.41 runs already, nothing to do\n"}),
        flash());
}

TEST_F(flash_server_test, TellsThatTheMenuHasNoSuchEntry) {
    assemble("server", "step=0 ispfr=55");
    EXPECT_EQ((outcome_t{1, "server: refused: the menu has no entry 'Emergency'\n"}),
              flash("-e Emergency"));
}

TEST_F(flash_server_test, TellsThatThePackageDoesNotStart) {
    assemble();
    std::filesystem::remove(folder() / "varn-2.41.bin");
    EXPECT_EQ((outcome_t{3,
                         "server: not started: [CRIT] Invalid argument error: Firmware file not "
                         "found: varn-2.41.bin\n"}),
              flash());
}

TEST_F(flash_server_test, TellsThatTheServerCannotBeReached) {
    EXPECT_EQ((outcome_t{3, "server: not started: the command has ended: No route to host\n"}),
              run(std::string(flashServer) + " sh -c 'echo No route to host; exit 255'"));
    EXPECT_EQ((outcome_t{3, "server: not started: no menu within 1 seconds\n"}),
              run(std::string(flashServer) + " -s 1 sleep 10"));
}

TEST_F(flash_server_test, LetsAFlashGoOnThatTakesTooLong) {
    assemble("server", "step=0.06");
    const outcome_t outcome = flash("-t 1");
    EXPECT_EQ(4, outcome.status);
    EXPECT_EQ(0U, outcome.printed.find(
                      "server: unclear: the core program has not ended within 1 seconds: "))
        << outcome.printed;
    EXPECT_FALSE(stateHolds("release2=2.41"));
    for (int rests = 0; rests < 300 && !stateHolds("release2=2.41"); ++rests) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_TRUE(stateHolds("release2=2.41"));
}

TEST_F(flash_server_test, TellsThatTheOutcomeIsNotKnown) {
    assemble();
    letCoreProgram("kill -KILL $$");
    EXPECT_EQ((outcome_t{4, "server: unclear: [WARN] Command cannot be executed properly\n"}),
              flash());
    letCoreProgram("echo Erasing; kill -KILL $PPID");
    EXPECT_EQ((outcome_t{4, "server: unclear: the connection is gone: Erasing\n"}), flash());
}

// The core program says that it is done, and then that it is not; or it is killed after that.
TEST_F(flash_server_test, BelievesNoSuccessBeforeTheMenuIsBack) {
    assemble();
    letCoreProgram(
        "echo 'Image 1: Done.'; sleep 2; echo 'varnflash: image 2 cannot be written'; exit 1");
    EXPECT_EQ((outcome_t{1, "server: refused: varnflash: image 2 cannot be written\n"}), flash());
    letCoreProgram("echo 'Image 1: Done.'; sleep 1; kill -KILL $$");
    EXPECT_EQ((outcome_t{4, "server: unclear: [WARN] Command cannot be executed properly\n"}),
              flash());
}

TEST_F(flash_server_test, TellsAtOnceThatNothingWasSaid) {
    assemble();
    letCoreProgram("echo Erasing");
    EXPECT_EQ(
        (outcome_t{4, "server: unclear: the core program has not said how it went: Erasing\n"}),
        flash());
}

// What ends it is sent by what it has started, so always at the same moment.
TEST_F(flash_server_test, TellsWhetherTheFlashHadBegunWhenItIsEnded) {
    EXPECT_EQ((outcome_t{3, "server: not started: the session was ended before the flash\n"}),
              run(std::string(flashServer) + " sh -c 'kill -TERM $PPID; exec sleep 100'"));

    assemble();
    letCoreProgram(
        "echo Erasing; kill -INT $(cat script.pid); sleep 1; echo Done.; echo whole >flashed");
    EXPECT_EQ((outcome_t{4, "server: unclear: the session was ended during the flash: Erasing\n"}),
              run(std::string(flashServer) + " sh -c 'cd " + (folder() / "tool").string() +
                  " && echo $PPID >script.pid && exec ./varnmenu'"));
    for (int rests = 0; rests < 300 && contentOf(folder() / "tool/flashed").empty(); ++rests) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_EQ("whole\n", contentOf(folder() / "tool/flashed"));
}

TEST_F(flash_server_test, KeepsAReasonThatComesInPieces) {
    assemble();
    letCoreProgram("printf varnflash:; sleep 2; echo ' the image is too old'; exit 1");
    EXPECT_EQ((outcome_t{1, "server: refused: varnflash: the image is too old\n"}), flash());
}

// The highlight stays on the entry: a second ENTER would flash again.
TEST_F(flash_server_test, FlashesOnce) {
    assemble();
    letCoreProgram("echo run >>runs; echo Done.");
    EXPECT_EQ((outcome_t{0, "server: flashed: Done.\n"}), flash());
    EXPECT_EQ("run\n", contentOf(folder() / "tool/runs"));
}

// Neither a greeting of the server nor a core program that fills many screens confuses it.
TEST_F(flash_server_test, PassesOverWhatIsNotTheCoreProgram) {
    assemble();
    letCoreProgram(
        "i=0; echo 'varnflash: the first line'; "
        "while [ $i -lt 700 ]; do i=$((i + 1)); printf 'block %200d is written\\n' $i; done; "
        "echo Done.");
    const std::string start =
        "'i=0; while [ $i -lt 60 ]; do i=$((i + 1)); echo Welcome; done; cd " +
        (folder() / "tool").string() + " && exec ./varnmenu'";
    EXPECT_EQ((outcome_t{0, "server: flashed: Done.\n"}),
              run(std::string(flashServer) + " -f 'not written' sh -c " + start));
    EXPECT_EQ((outcome_t{1, "server: refused: varnflash: the first line\n"}),
              run(std::string(flashServer) + " sh -c " + start));
}

TEST_F(flash_server_test, TellsWhyNothingStarted) {
    EXPECT_EQ((outcome_t{3,
                         "server: not started: the command has ended: sh: 1: cd: can't cd to "
                         "/opt/nope\n"}),
              run(std::string(flashServer) + " sh -c 'sh -c \"cd /opt/nope && exec ./varnmenu\"; "
                                             "echo Connection to server1 closed.'"));
    EXPECT_EQ(
        (outcome_t{3, "server: not started: no menu within 1 seconds: root@server1's password:\n"}),
        run(std::string(flashServer) +
            " -s 1 sh -c 'printf \"root@server1'\\''s password: \"; exec sleep 10'"));
}

TEST_F(flash_server_test, KeepsTheWholeSession) {
    assemble();
    const std::filesystem::path log = package.root() / "log";
    EXPECT_EQ(0, flash("-l " + log.string()).status);
    const std::string first = contentOf(log);
    EXPECT_NE(std::string::npos, first.find("\n== server, 2")) << first;
    EXPECT_NE(std::string::npos, first.find("Erasing   100%")) << first;
    EXPECT_NE(std::string::npos, first.find("due to user normal exit")) << first;
    EXPECT_EQ(1, flash("-e Nothing -l " + log.string()).status);
    EXPECT_EQ(0U, contentOf(log).find(first));

    const outcome_t outcome = flash("-l /nowhere/log");
    EXPECT_EQ(3, outcome.status);
    EXPECT_EQ(0U, outcome.printed.find("server: not started: ")) << outcome.printed;
}

TEST_F(flash_server_test, DrivesManyServers) {
    assemble("one");
    assemble("two", "step=0 release1=2.41");
    const outcome_t outcome =
        run("printf '%s\\n' one two | xargs -P 2 -I HOST " + std::string(flashServer) +
            " -n HOST sh -c 'cd " + package.root().string() + "/HOST/tool && exec ./varnmenu'");
    EXPECT_EQ(123, outcome.status);
    EXPECT_NE(std::string::npos, outcome.printed.find("one: flashed: "));
    EXPECT_NE(std::string::npos, outcome.printed.find("two: refused: "));
}

TEST_F(flash_server_test, ExplainsItsOptions) {
    for (const char* words : {"", "-x true", "-n", "-t soon true", "-d '(' true", "-f '(' true"}) {
        const outcome_t outcome = run(std::string(flashServer) + " " + words);
        EXPECT_EQ(2, outcome.status);
        EXPECT_EQ(0U, outcome.printed.find("usage: flash-server.exp "));
    }
}
