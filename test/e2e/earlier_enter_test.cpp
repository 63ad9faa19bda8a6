#include <algorithm>

#include "harness/tool_test.hpp"

namespace {

using pieces_t = std::vector<std::string>;

/// ENTER that was typed when nobody can have seen the menu: pasted, the second byte of a line end,
/// or from a key that is held.
class earlier_enter_test : public tool_test {
protected:
    /// The pieces follow each other within 50 ms, which a busy machine may miss, but not every
    /// time.
    /// @param attempt starts a program and types them
    /// @return true when it has ever led to the menu alone, and to nothing more than the first
    /// flash
    bool isEverNothingChosen(const std::function<void()>& attempt) {
        constexpr int mostAttempts = 20;
        bool isNothingChosen = false;
        for (int tries = 0; tries < mostAttempts && !isNothingChosen; ++tries) {
            package.remove("runs.log");
            package.let("varnflash", "");
            startMenu();
            attempt();
            session->awaitKeyWait();
            isNothingChosen = isMenuAlone() && flashes() <= 1;
        }
        return isNothingChosen;
    }

    /// Types during the normal flash, and lets it end.
    void typeDuringFlash(const pieces_t& during) {
        package.hold("varnflash");
        choose(1);
        session->awaitScreen("at work");
        for (const std::string& piece : during) {
            session->type(piece);
        }
        package.letGo();
        session->await([&] { return package.runs().back().ended; }, "the end of the flash");
    }

    /// Types the pieces, each while the program throws away what came before it.
    void typeInPieces(const pieces_t& pieces) {
        for (const std::string& piece : pieces) {
            session->await(
                [&] { return session->isWaitingForMore() || session->isWaitingForKey(); },
                "a wait");
            session->type(piece);
        }
    }

    void startAtAWarning() {
        moveTo("4");
        session->press("x");
        awaitEnterPrompt();
    }

    /// The flashes that were run, the question at the start left out.
    std::ptrdiff_t flashes() const {
        const auto lines = package.commandLines();
        return std::count(lines.begin(), lines.end(), "./varnflash ../fw.bin /i /logDebug");
    }

    bool isMenuAlone() const {
        return session->screen().contains(mainScreen().text(main_menu::exit)) &&
               !session->screen().contains("at work") && !session->screen().contains("[WARN]");
    }
};

}  // namespace

// One ends the wait after the flash, as a script types it.
TEST_F(earlier_enter_test, OnceDuringAFlashEndsTheWaitAfterIt) {
    startMenu();
    typeDuringFlash({"\r"});
    session->await([this] { return isMenuAlone(); }, "the menu");
    EXPECT_EQ(1, flashes());
}

// Several are no answer to what is not on the screen yet, but a held key or a user who knocks.
TEST_F(earlier_enter_test, SeveralTimesDuringAFlashCountsForNone) {
    for (const std::string& typed :
         {std::string(3, '\r'), std::string(60, '\r'), std::string("Steps:\r4 images to do\r")}) {
        package.remove("runs.log");
        package.let("varnflash", "");
        startMenu();
        typeDuringFlash({typed});
        session->awaitKeyWait();
        EXPECT_TRUE(session->screen().contains("work done"));
        session->press("\r");
        session->await([this] { return isMenuAlone(); }, "the menu");
        EXPECT_EQ(1, flashes());
    }
}

// The rest of it comes while the program throws away what came before, and later.
TEST_F(earlier_enter_test, HeldDuringAFlashAndAfterItRunsItOnce) {
    startMenu();
    typeDuringFlash(pieces_t(60, "\r"));
    typeInPieces(pieces_t(10, "\r"));
    session->awaitKeyWait();
    EXPECT_EQ(1, flashes());
}

TEST_F(earlier_enter_test, PastedInPiecesDuringAFlashRunsItOnce) {
    startMenu();
    typeDuringFlash({"Steps:\r4 images to do\r"});
    typeInPieces({"1 look\r", "4 images", "\r", "\r", "3\r"});
    session->awaitKeyWait();
    EXPECT_EQ(1, flashes());
}

TEST_F(earlier_enter_test, PastedInPiecesAtAWarningChoosesNothing) {
    EXPECT_TRUE(isEverNothingChosen([this] {
        startAtAWarning();
        session->type("Steps:\r4 images to do\r");
        typeInPieces({"\r", "1\r", "\r\n"});
    }));
    EXPECT_EQ(0, flashes());
    EXPECT_TRUE(session->screen().contains("\n> 4"));
}

TEST_F(earlier_enter_test, OfTwoBytesChoosesNothing) {
    startMenu();
    startAtAWarning();
    session->type("\r\n");
    awaitMenu("4");
    EXPECT_TRUE(isMenuAlone());
}

// A script that types once the program waits loses nothing, right after a flash or a warning, too.
TEST_F(earlier_enter_test, LeavesWhatIsTypedAtTheMenuAlone) {
    startMenu();
    for (int round = 0; round < 3; ++round) {
        for (const char* key : {"1", "\r", "\r", "x", "\r"}) {
            session->press(key);
        }
    }
    session->awaitKeyWait();
    EXPECT_EQ(3, flashes());
    EXPECT_TRUE(isMenuAlone());
}
