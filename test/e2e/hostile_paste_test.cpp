#include <poll.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <random>
#include <string_view>

#include "harness/control_keys.hpp"
#include "harness/tool_test.hpp"

namespace {

constexpr std::size_t pastedBytes = 64 * 1024;
constexpr int mostKeysToMainMenu = 20;

/// Arbitrary, and the same in every run. Left out is what would end the program rightly: Ctrl-C,
/// and the number of "Exit", which an ENTER may follow. A Ctrl-S is followed by a Ctrl-Q: with its
/// output stopped the program reads no more, and nothing gets through a full queue.
std::string randomBytes(unsigned seed) {
    const char exit = mainScreen().key(main_menu::exit).front();
    std::mt19937 generator(seed);
    std::string bytes;
    while (bytes.size() < pastedBytes) {
        const char byte = static_cast<char>(generator() & 0xff);
        if (byte != endOfText && byte != exit) {
            bytes += byte;
        }
        if (byte == halt) {
            bytes += goOn;
        }
    }
    return bytes;
}

/// Something that is no text falls into the terminal.
class hostile_paste_test : public tool_test {
protected:
    /// Every piece meets a program that waits for a key. None ends between a Ctrl-S and its Ctrl-Q.
    void pasteInPieces(std::string_view bytes, std::size_t pieceSize) {
        while (!bytes.empty()) {
            std::size_t size = std::min(pieceSize, bytes.size());
            size += bytes[size - 1] == halt ? 1 : 0;
            session->paste(bytes.substr(0, size));
            bytes.remove_prefix(size);
            session->await([this] { return hasReadAll(); }, "the piece to be read");
        }
    }

    /// All bytes have reached the program, and it waits for more. Neither its input queue nor its
    /// sleep tells of what the kernel still has to put into that queue; the driver's own bytes,
    /// typed after the rest, do. Where the queue was full, they may overtake it once.
    void awaitAllTaken() {
        for (int round = 0; round < 3; ++round) {
            session->type(std::string(1, halt));
            session->await([this] { return !canWrite(); }, "the output to stop");
            session->type(std::string(1, goOn));
            session->await([this] { return canWrite(); }, "the output to go on");
            session->await([this] { return hasReadAll(); }, "all bytes to be read");
        }
    }

    bool hasReadAll() const {
        int queued = 0;
        ioctl(session->terminal().slave(), FIONREAD, &queued);
        return queued == 0 && session->isWaitingForKey();
    }

    bool canWrite() const {
        pollfd output{session->terminal().slave(), POLLOUT, 0};
        return poll(&output, 1, 0) == 1;
    }

    bool isMenuShown() const {
        const auto rows = session->screen().rows();
        return !rows.empty() && rows.back() == "(c) 2026 Varn Firmware Tools";
    }

    /// Leaves whatever the bytes have led to, as a user would.
    void returnToMainMenu() {
        for (int key = 0; key < mostKeysToMainMenu; ++key) {
            session->awaitKeyWait();
            if (!isMenuShown()) {
                session->press("\r");
            } else if (session->screen().contains("#LEGAL")) {
                choose(legalScreen().number(legal_menu::exit));
            } else {
                return;
            }
        }
        FAIL() << "no way to the main menu from\n" << session->screen().text();
    }

    /// A Ctrl-S at the very moment when the kernel passes a line feed on to a pseudo-terminal
    /// swallows the line feed: what was drawn while the bytes came may be one line too high.
    void drawAnew() {
        choose(mainScreen().number(main_menu::legalDocuments));
        session->awaitScreen("#LEGAL");
        choose(legalScreen().number(legal_menu::exit));
        session->await([this] { return !session->screen().contains("#LEGAL"); }, "the main menu");
    }

    void expectAnswers() {
        awaitAllTaken();
        returnToMainMenu();
        drawAnew();
        moveTo("3");
        EXPECT_EQ("       This tool will update Varn FW --> Rel. 2.41", session->screen().row(0));
        EXPECT_FALSE(session->terminal().isCooked());
        EXPECT_FALSE(session->screen().isCursorVisible());
    }
};

}  // namespace

TEST_F(hostile_paste_test, OfRandomBytesAtOnceLeavesAProgramThatAnswers) {
    startMenu();
    session->paste(randomBytes(1));
    expectAnswers();
}

TEST_F(hostile_paste_test, OfRandomBytesInPiecesLeavesAProgramThatAnswers) {
    startMenu();
    pasteInPieces(randomBytes(3), 256);
    expectAnswers();
}
