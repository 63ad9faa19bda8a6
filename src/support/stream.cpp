#include "support/stream.hpp"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <unordered_map>

#include "support/escape_sequence.hpp"
#include "support/input_watch.hpp"
#include "support/menu_exception.hpp"

namespace {

constexpr char endOfText = '\x03';  // Ctrl-C
constexpr char lineFeed = '\n';
constexpr char carriageReturn = '\r';

// A serial line delivers the bytes of one arrow key with gaps.
constexpr int gapMilliseconds = 50;
constexpr int endOfFileRestMilliseconds = 100;

/// A carriage return is what ENTER sends; not every terminal driver turns it into a line feed.
bool isEnterByte(char byte) { return byte == lineFeed || byte == carriageReturn; }

const std::string& tracePrefix(std::uint32_t level) {
    static const std::unordered_map<std::uint32_t, std::string> prefixes{
        {trace_debug, "[DEBUG] "},  {trace_info, "[INFO] "},   {trace_plain, ""},
        {trace_warning, "[WARN] "}, {trace_error, "[ERROR] "}, {trace_critical, "[CRIT] "}};
    const auto prefix = prefixes.find(level);
    if (prefix == prefixes.end()) {
        throw std::runtime_error("Trace type not supported");
    }
    return prefix->second;
}

/// Waits until the terminal has received the last drawing; see tcdrain(3). A serial line is still
/// busy with it long after the program has written it; a stop interrupts the wait. Anything that is
/// not a terminal takes everything at once.
void awaitDrawn() {
    while (tcdrain(STDOUT_FILENO) != 0 && errno == EINTR) {
    }
}

/// To be called when standard input was readable but gave nothing. Nobody can type on a terminal
/// that has hung up: ends the process, as the signal of the hang-up would have done.
void endIfHungUp() {
    termios attributes{};
    if (tcgetattr(STDIN_FILENO, &attributes) != 0 && errno == EIO) {
        raise(SIGHUP);
    }
}

}  // namespace

void stream::trace(std::uint32_t level, const std::string& message, const std::string& lead) const {
    if ((levelMask & level) == 0) {
        return;
    }
    const std::string line = lead + tracePrefix(level) + message + lineFeed;
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

void stream::trace(const std::string& message) const {
    if (!message.empty()) {
        trace(trace_plain, message, "");
    }
}

int stream::readInput() {
    currentInput.clear();
    if (scriptedInputs.empty()) {
        readKey();
    } else {
        currentInput = std::move(scriptedInputs.front());
        scriptedInputs.pop_front();
        enters.forget();
    }
    if (!currentInput.empty() && currentInput.back() == endOfText) {
        throw menu_exception("user interruption");
    }
    return static_cast<int>(currentInput.size());
}

void stream::readKey() {
    input_watch keyboard(STDIN_FILENO);
    const std::function<bool()> settle = [&] {
        // First of all, because in the terminal's current mode, reading may wait for a whole line.
        const bool isDrawnAnew = settleBeforeWait();
        awaitDrawn();
        // A key is to act on the menu that the user sees. An ENTER typed earlier comes from a
        // pasted text, a line end of two bytes or a held key: more follows.
        discardTyped(keyboard, [](int enterCount) { return enterCount > 0; });
        return isDrawnAnew;
    };
    if (keyboard.waitReadable(input_watch::noTimeLimit, settle)) {
        takeKey(keyboard);
    }
    keyboard.leaveOpen();
}

void stream::discardUntilQuiet() {
    discardTyped(input_watch(STDIN_FILENO), [](int) { return true; });
}

void stream::discardKnocking() {
    if (isatty(STDIN_FILENO) == 0) {
        return;
    }
    const input_watch keyboard(STDIN_FILENO);
    if (discardTyped(keyboard, [](int enterCount) { return enterCount > 1; }) == 1) {
        std::ungetc(lineFeed, stdin);
    }
}

/// Discards what has been typed; of a sequence that is half there, the other half, too.
/// @param callsForQuiet whether so many ENTERs mean that more follows, which is discarded, too
/// @return how many ENTERs were discarded
int stream::discardTyped(const input_watch& keyboard, bool (*callsForQuiet)(int enters)) {
    int enterCount = 0;
    escape_sequence sequence;
    const auto discard = [&](char byte) {
        sequence.add(byte);
        if (isEnterByte(byte)) {
            enters.add();
            ++enterCount;
        }
    };
    // Signals do not end the quiet, however many arrive.
    const std::function<bool()> settle = [this] {
        settleBeforeWait();
        return true;
    };
    takeWaitingBytes(discard);
    while ((callsForQuiet(enterCount) || sequence.isUnfinished()) &&
           keyboard.waitReadable(gapMilliseconds, settle) && takeWaitingBytes(discard)) {
    }
    return enterCount;
}

void stream::takeKey(const input_watch& keyboard) {
    const int first = readByte();
    if (first == EOF) {
        return endIfHungUp();
    }
    currentInput.push_back(static_cast<char>(first));
    if (isEnterByte(currentInput.front())) {
        enters.add();
    } else {
        enters.forget();
    }
    if (first != escape_sequence::start) {
        return;
    }
    escape_sequence sequence;
    sequence.add(escape_sequence::start);
    const std::function<void(char)> append = [&](char byte) {
        sequence.add(byte);
        currentInput.push_back(byte);
        if (isEnterByte(byte)) {
            enters.add();  // it is lost within the sequence, but the key may still be held down
        }
    };
    takeWaitingBytes(append);
    while (sequence.isUnfinished() && keyboard.waitReadable(gapMilliseconds) &&
           takeWaitingBytes(append)) {
    }
}

bool stream::takeWaitingBytes(const std::function<void(char)>& take) {
    bool isAnyTaken = false;
    for (int byte = readByte(); byte != EOF; byte = readByte()) {
        take(static_cast<char>(byte));
        isAnyTaken = true;
    }
    return isAnyTaken;
}

int stream::readByte() {
    // The raw mode answers "end of file" whenever no key waits, and stdio remembers that answer.
    std::clearerr(stdin);
    return std::fgetc(stdin);
}

int stream::awaitByte(const input_watch& keyboard) const {
    int byte = readByte();
    while (byte == EOF) {
        keyboard.waitReadable(input_watch::noTimeLimit, settleBeforeWait);
        byte = readByte();
        if (byte == EOF) {
            endIfHungUp();
            // A real end of file is readable for ever: look again now and then.
            poll(nullptr, 0, endOfFileRestMilliseconds);
        }
    }
    return byte;
}

void stream::queueInput(const std::string& input) {
    scriptedInputs.push_back(input.empty() ? std::string(1, endOfText) : input);
}

int stream::inputAsNumber() const {
    const long number = std::strtol(currentInput.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
}

bool stream::isEscapeSequence() const {
    return currentInput.size() >= 2 && currentInput.front() == escape_sequence::start;
}

bool stream::isEnter() const { return currentInput == "\n"; }

bool stream::isNumber() const {
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    return std::all_of(currentInput.begin(), currentInput.end(), isDigit);
}
