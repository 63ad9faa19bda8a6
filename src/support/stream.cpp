#include "support/stream.hpp"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <unordered_map>

#include "support/input_watch.hpp"
#include "support/menu_exception.hpp"

namespace {

constexpr char endOfText = '\x03';  // Ctrl-C
constexpr char escape = '\x1b';
constexpr char lineFeed = '\n';

constexpr int escapeGapMilliseconds = 50;
constexpr int endOfFileRestMilliseconds = 100;

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

/// A serial line delivers the bytes of one arrow key with gaps. ESC "[" waits for its final byte,
/// ESC "O" for the one byte behind it; any other sequence is whole with its second byte.
/// @return true when the bytes end in the middle of a sequence
bool isUnfinishedSequence(std::string_view bytes) {
    const std::size_t start = bytes.rfind(escape);
    if (start == std::string_view::npos) {
        return false;
    }
    bytes.remove_prefix(start);
    if (bytes.size() == 1 || bytes == "\x1bO") {
        return true;
    }
    const auto isFinal = [](char byte) { return byte >= '@' && byte <= '~'; };
    return bytes[1] == '[' && std::none_of(bytes.begin() + 2, bytes.end(), isFinal);
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
    }
    if (!currentInput.empty() && currentInput.back() == endOfText) {
        throw menu_exception("user interruption");
    }
    return static_cast<int>(currentInput.size());
}

void stream::readKey() {
    input_watch keyboard(STDIN_FILENO);
    // What was typed earlier is thrown away; of a key that is half there, the other half, too.
    takeWaitingBytes(keyboard);
    currentInput.clear();
    if (keyboard.waitReadable(input_watch::noTimeLimit, settleBeforeWait)) {
        const int first = readByte();
        if (first != EOF) {
            currentInput.push_back(static_cast<char>(first));
        }
        if (first == escape) {
            takeWaitingBytes(keyboard);
        }
    }
    keyboard.leaveOpen();
}

void stream::takeWaitingBytes(const input_watch& keyboard) {
    appendWaitingBytes();
    while (isUnfinishedSequence(currentInput) && keyboard.waitReadable(escapeGapMilliseconds) &&
           appendWaitingBytes()) {
    }
}

bool stream::appendWaitingBytes() {
    const std::size_t known = currentInput.size();
    for (int byte = readByte(); byte != EOF; byte = readByte()) {
        currentInput.push_back(static_cast<char>(byte));
    }
    return currentInput.size() > known;
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
    return currentInput.size() >= 2 && currentInput.front() == escape;
}

bool stream::isEnter() const { return currentInput == std::string_view(&lineFeed, 1); }

bool stream::isNumber() const {
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    return std::all_of(currentInput.begin(), currentInput.end(), isDigit);
}
