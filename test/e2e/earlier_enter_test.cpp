#include <sys/ioctl.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>

#include "harness/tool_test.hpp"

namespace {

/// ENTER that was typed when nobody can have seen the menu: pasted, the second byte of a line end,
/// or from a key that is held.
class earlier_enter_test : public tool_test {
protected:
    // The pieces follow each other within 50 ms, which a busy machine may miss, but not every time.
    static constexpr int mostAttempts = 20;

    earlier_enter_test() { mkfifo((package.root() / "go").c_str(), 0600); }

    /// The normal flash, which goes on until the test lets it end.
    void startFlash() {
        startMenu();
        package.let("varnflash", "print writing\nawait go\nprint written");
        choose(1);
        session->awaitScreen("writing");
    }

    void endFlash() { std::ofstream(package.root() / "go") << "\n"; }

    /// Types the pieces, each while the program throws away what came before it.
    void typeInPieces(const std::vector<std::string>& pieces) {
        for (const std::string& piece : pieces) {
            session->await(
                [&] { return session->isWaitingForMore() || session->isWaitingForKey(); },
                "a wait");
            session->type(piece);
        }
    }

    /// The flashes that were run, the question at the start left out.
    std::ptrdiff_t flashes() const {
        const auto lines = package.commandLines();
        return std::count(lines.begin(), lines.end(), "./varnflash ../fw.bin /i /logDebug");
    }

    bool isMenuAlone() const {
        return session->screen().contains("[8] Exit") && !session->screen().contains("writing") &&
               !session->screen().contains("[WARN]");
    }

    /// Waits for what the bytes have led to.
    /// @return true when that is the menu, and nothing more than the first flash
    bool isNothingChosen() {
        session->awaitKeyWait();
        return isMenuAlone() && flashes() <= 1;
    }
};

}  // namespace

TEST_F(earlier_enter_test, HeldDuringAFlashRunsItOnce) {
    bool isRunOnce = false;
    for (int attempt = 0; attempt < mostAttempts && !isRunOnce; ++attempt) {
        package.remove("runs.log");
        package.let("varnflash", "");
        startFlash();
        for (int repeats = 0; repeats < 60; ++repeats) {  // two seconds of a held key
            session->type("\r");
        }
        endFlash();
        session->await([&] { return package.runs().back().ended; }, "the end of the flash");
        typeInPieces(std::vector<std::string>(10, "\r"));
        isRunOnce = isNothingChosen();
    }
    EXPECT_TRUE(isRunOnce);
}

TEST_F(earlier_enter_test, PastedInPiecesDuringAFlashChoosesNothing) {
    bool isAlone = false;
    for (int attempt = 0; attempt < mostAttempts && !isAlone; ++attempt) {
        package.remove("runs.log");
        package.let("varnflash", "");
        startFlash();
        session->type("Steps:\r4 images to do\r");
        endFlash();
        session->await([&] { return package.runs().back().ended; }, "the end of the flash");
        typeInPieces({"1 look\r", "4 images", "\r", "\r", "3\r"});
        isAlone = isNothingChosen();
    }
    EXPECT_TRUE(isAlone);
}

TEST_F(earlier_enter_test, PastedInPiecesAtAWarningChoosesNothing) {
    bool isAlone = false;
    for (int attempt = 0; attempt < mostAttempts && !isAlone; ++attempt) {
        startMenu();
        session->press("4");
        awaitMenu("4");
        session->press("x");
        session->awaitScreen("Press ENTER");
        session->awaitKeyWait();
        session->type("Steps:\r4 images to do\r");
        typeInPieces({"\r", "1\r", "\r\n"});
        isAlone = isNothingChosen() && session->screen().contains("\n> 4");
    }
    EXPECT_TRUE(isAlone);
    EXPECT_EQ(0, flashes());
}

TEST_F(earlier_enter_test, OfTwoBytesChoosesNothing) {
    startMenu();
    session->press("1");
    awaitMenu("1");
    session->press("x");
    session->awaitScreen("Press ENTER");
    session->awaitKeyWait();
    session->type("\r\n");
    awaitMenu("1");
    EXPECT_TRUE(isMenuAlone());
    EXPECT_EQ(0, flashes());
}

// As long as a key is held, the next one follows as soon as one has been read or thrown away.
TEST_F(earlier_enter_test, IsNotWhatAHeldArrowKeyIsTakenFor) {
    startMenu();
    const auto holdAndLook = [&] {
        int unread = 0;
        ioctl(session->terminal().slave(), FIONREAD, &unread);
        if (unread == 0) {
            session->type("\x1b[B");
        }
        return session->screen().contains("\n> 8\n");
    };
    session->await(holdAndLook, "the last line to be highlighted");
}

// A script that types once the program waits loses nothing, right after a flash or a warning, too.
TEST_F(earlier_enter_test, LeavesWhatIsTypedAtTheMenuAlone) {
    startMenu();
    for (int round = 0; round < 3; ++round) {
        session->press("1");
        session->press("\r");
        session->press("\r");
        session->press("x");
        session->press("\r");
    }
    session->awaitKeyWait();
    EXPECT_EQ(3, flashes());
    EXPECT_TRUE(isMenuAlone());
}
