#include <fstream>

#include "e2e/demo_test.hpp"
#include "harness/patience.hpp"

namespace {

/// flash-server.exp in front of the simulated package.
class flash_server_test : public demo_test {
protected:
    /// @param words options, and the command that starts the menu
    /// @return exit status, a blank and what was printed
    static std::string run(const std::string& words) { return runShell(script + words); }

    static std::string runShell(const std::string& command) {
        const outcome_t outcome = outcomeOf({.path = "/bin/sh",
                                             .arguments = {"sh", "-c", command + " 2>&1"},
                                             .environment = {{"PATH", "/usr/bin:/bin"}},
                                             .directory = "/"});
        return std::to_string(outcome.status) + " " + outcome.output;
    }

    std::string flash(const std::string& options = "") const {
        return run(options + " sh -c 'cd " + (folder() / "tool").string() + " && exec ./varnmenu'");
    }

    /// The core program does this when it is asked to flash.
    void letCoreProgram(const std::string& text) const {
        std::ofstream(folder() / "tool/varnflash")
            << "#!/bin/sh\n[ \"$1\" != /ispfr ] || exit 0\n" + text + "\n";
    }

    /// The core program begins to flash and waits until expectFlashGoesOn.
    void holdCoreProgram() const {
        letCoreProgram(
            "echo Erasing; : >begun; until [ -e go ]; do sleep 0.1; done; echo whole >flashed");
    }

    void expectFlashGoesOn() const {
        const std::filesystem::path tool = folder() / "tool";
        EXPECT_FALSE(std::filesystem::exists(tool / "flashed"));
        std::ofstream(tool / "go") << "\n";
        awaitTrue([&] { return contentOf(tool / "flashed") == "whole\n"; }, "the end of the flash");
    }

    static inline const std::string script =
        FLEET_FOLDER "/roles/varn_firmware/files/flash-server.exp ";
};

}  // namespace

TEST_F(flash_server_test, FlashesTheInactiveImage) {
    assemble();
    EXPECT_EQ(
        "0 server: flashed: Done. Image 2 becomes active with the next reboot of "
        "the Varn.\n",
        flash());
    EXPECT_TRUE(stateHolds("release2=2.41"));
    EXPECT_TRUE(stateHolds("release1=2.10"));
}

// Without the emergency flash Exit has another number.
TEST_F(flash_server_test, LeavesByExitWhicheverNumberItHas) {
    for (const char* state : {"ispfr=0 step=0", "ispfr=55 step=0"}) {
        assemble(state);
        const std::string outcome = flash("-v");
        EXPECT_TRUE(outcome.starts_with("0 ")) << outcome;
        EXPECT_NE(std::string::npos, outcome.find("due to user normal exit")) << outcome;
    }
}

TEST_F(flash_server_test, CarriesOutTheEntryThatItIsTold) {
    assemble();
    EXPECT_TRUE(flash("-e 'Forced Normal Flash of 1st'").starts_with("0 "));
    EXPECT_TRUE(stateHolds("release1=2.41"));
    EXPECT_EQ("0 rack 7: flashed: The Varn is up. Active image: 1\n",
              flash("-n 'rack 7' -e 'Reboot Varn' -d 'The Varn is up'"));
}

TEST_F(flash_server_test, TellsThatTheCoreProgramRefuses) {
    assemble("step=0 release1=2.41");
    EXPECT_EQ("1 server: refused: varnflash: release 2.41 runs already, nothing to do\n", flash());
}

TEST_F(flash_server_test, TellsThatTheMenuHasNoSuchEntry) {
    assemble("step=0 ispfr=55");
    EXPECT_EQ("1 server: refused: the menu has no entry 'Emergency'\n", flash("-e Emergency"));
}

TEST_F(flash_server_test, TellsThatThePackageDoesNotStart) {
    assemble();
    std::filesystem::remove(folder() / "varn-2.41.bin");
    EXPECT_EQ(
        "3 server: not started: [CRIT] Invalid argument error: Firmware file not "
        "found: varn-2.41.bin\n",
        flash());
}

TEST_F(flash_server_test, LetsAFlashGoOnThatTakesTooLong) {
    assemble();
    holdCoreProgram();
    const std::string outcome = flash("-t 1");
    EXPECT_TRUE(
        outcome.starts_with("5 server: unclear: the core program has not ended within 1 seconds: "))
        << outcome;
    expectFlashGoesOn();
}

TEST_F(flash_server_test, TellsThatTheOutcomeIsNotKnown) {
    assemble();
    letCoreProgram("kill -KILL $$");
    EXPECT_EQ("4 server: unclear: [WARN] Command cannot be executed properly\n", flash());
    letCoreProgram("echo Erasing; kill -KILL $PPID");
    EXPECT_EQ("5 server: unclear: the connection is gone: Erasing\n", flash());
}

// The core program says that it is done, and then that it is not; or it is killed after that.
TEST_F(flash_server_test, BelievesNoSuccessBeforeTheMenuIsBack) {
    assemble();
    letCoreProgram(
        "echo 'Image 1: Done.'; sleep 2; echo 'varnflash: image 2 cannot be written'; exit 1");
    EXPECT_EQ(
        "4 server: unclear: the core program said both: Image 1: Done. / varnflash: image 2 cannot "
        "be "
        "written\n",
        flash());
    letCoreProgram("echo 'Image 1: Done.'; sleep 1; kill -KILL $$");
    EXPECT_EQ("4 server: unclear: [WARN] Command cannot be executed properly\n", flash());
}

TEST_F(flash_server_test, TellsAtOnceThatNothingWasSaid) {
    assemble();
    letCoreProgram("echo Erasing");
    EXPECT_EQ("4 server: unclear: the core program has not said how it went: Erasing\n", flash());
}

TEST_F(flash_server_test, TellsWhetherTheFlashHadBegunWhenItsInputEnds) {
    EXPECT_EQ("3 server: not started: the session was ended before the flash\n",
              runShell("true | " + script + "-w sh -c 'exec sleep 100'"));

    assemble();
    holdCoreProgram();
    const std::string tool = (folder() / "tool").string();
    const std::string outcome = runShell(
        "cd " + tool + "; until [ -e begun ]; do sleep 0.1; done | " + script + "-w ./varnmenu");
    // It may end before it has read the line.
    EXPECT_TRUE(outcome.starts_with("5 server: unclear: the session was ended during the flash"))
        << outcome;
    expectFlashGoesOn();
}

TEST_F(flash_server_test, KeepsAReasonThatComesInPieces) {
    assemble();
    letCoreProgram("printf varnflash:; sleep 2; echo ' the image is too old'; exit 1");
    EXPECT_EQ("1 server: refused: varnflash: the image is too old\n", flash());
}

// It still writes, and what it prints looks like the end of a menu, or like a small one.
TEST_F(flash_server_test, TakesNothingButTheMenuForTheMenu) {
    assemble();
    const std::string drawn = "'[1] Flash' '[2] Exit' '> 1' 'Varn-FW: 2.41' '(c)'";
    letCoreProgram("echo Done.; printf '%s\\r\\n' " + drawn +
                   "; sleep 1; echo 'varnflash: image 2 cannot be written'");
    EXPECT_EQ(
        "4 server: unclear: the core program said both: Done. / varnflash: image 2 cannot be "
        "written\n",
        flash());
    EXPECT_TRUE(run("sh -c \"printf '%s\\r\\n' Welcome '> 1' a b; cd " +
                    (folder() / "tool").string() + " && exec ./varnmenu\"")
                    .starts_with("4 "));
}

TEST_F(flash_server_test, TakesALastLineWithoutItsEnd) {
    assemble();
    letCoreProgram("printf Done.");
    EXPECT_EQ("0 server: flashed: Done.\n", flash());
}

TEST_F(flash_server_test, RunsACommandRightBeforeTheFlash) {
    assemble();
    const std::string note = (package.root() / "note").string();
    letCoreProgram("cat " + note + "; echo Done.");
    EXPECT_EQ("3 server: not started: no room\n", flash("-b 'echo no room; exit 1'"));
    EXPECT_EQ("0 server: flashed: begun, Done.\n", flash("-b 'printf \"begun, \" >" + note + "'"));
    EXPECT_TRUE(flash("-e Nothing -b 'echo twice >" + note + "'").starts_with("1 "));
    EXPECT_EQ("begun, ", contentOf(note));
}

// The highlight stays on the entry: a second ENTER would flash again.
TEST_F(flash_server_test, FlashesOnce) {
    assemble();
    letCoreProgram("echo run >>runs; echo Done.");
    EXPECT_EQ("0 server: flashed: Done.\n", flash());
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
    EXPECT_EQ("0 server: flashed: Done.\n", run("-f 'not written' sh -c " + start));
    EXPECT_EQ("4 server: unclear: the core program said both: Done. / varnflash: the first line\n",
              run("sh -c " + start));
}

TEST_F(flash_server_test, TellsWhyNothingStarted) {
    EXPECT_EQ("3 server: not started: the command has ended: No route to host\n",
              run(" sh -c 'echo No route to host; exit 255'"));
    EXPECT_EQ(
        "3 server: not started: the command has ended: sh: 1: cd: can't cd to "
        "/opt/nope\n",
        run("sh -c 'sh -c \"cd /opt/nope && exec ./varnmenu\"; "
            "echo Connection to server1 closed.'"));
    EXPECT_EQ("3 server: not started: no menu within 1 seconds: root@server1's password:\n",
              run(" -s 1 sh -c 'printf \"root@server1'\\''s password: \"; exec sleep 10'"));
}

TEST_F(flash_server_test, KeepsTheWholeSession) {
    assemble();
    const std::filesystem::path log = package.root() / "log";
    EXPECT_TRUE(flash("-l " + log.string()).starts_with("0 "));
    const std::string first = contentOf(log);
    EXPECT_NE(std::string::npos, first.find("\n== server, 2")) << first;
    EXPECT_NE(std::string::npos, first.find("Erasing   100%")) << first;
    EXPECT_NE(std::string::npos, first.find("due to user normal exit")) << first;
    EXPECT_TRUE(flash("-e Nothing -l " + log.string()).starts_with("1 "));
    EXPECT_EQ(0U, contentOf(log).find(first));

    const std::string outcome = flash("-l /nowhere/log");
    EXPECT_TRUE(outcome.starts_with("3 server: not started: ")) << outcome;
}

TEST_F(flash_server_test, DrivesManyServers) {
    assemble("step=0", "one");
    assemble("step=0 release1=2.41", "two");
    // Every server has its own lock.
    const std::string outcome =
        runShell("printf '%s\\n' one two | xargs -P 2 -I HOST " + script +
                 "-n HOST unshare -m sh -c 'mount -t tmpfs run /run && cd " +
                 package.root().string() + "/HOST/tool && exec ./varnmenu'");
    EXPECT_TRUE(outcome.starts_with("123 ")) << outcome;
    EXPECT_NE(std::string::npos, outcome.find("one: flashed: "));
    EXPECT_NE(std::string::npos, outcome.find("two: refused: "));
}

TEST_F(flash_server_test, ExplainsItsOptions) {
    for (const char* words : {"", "-x true", "-n", "-t soon true", "-d '(' true", "-f '(' true"}) {
        const std::string outcome = run(words);
        EXPECT_TRUE(outcome.starts_with("2 usage: flash-server.exp ")) << outcome;
    }
}
