#include "fuzz/keyboard_model.hpp"

#include <algorithm>

namespace {

constexpr int longestGap = 50;
constexpr char escape = '\x1b';

/// @return true when the last sequence of the bytes is not whole
bool isCut(const std::string& bytes) {
    enum { whole, behindEscape, behindO, behindBracket } state = whole;
    for (const char byte : bytes) {
        const bool isFinal = byte >= 0x40 && byte != 0x7f;
        if (byte == escape) {
            state = behindEscape;
        } else if (state == behindEscape && byte == '[') {
            state = behindBracket;
        } else if (state == behindEscape && byte == 'O') {
            state = behindO;
        } else if (state != behindBracket || isFinal) {
            state = whole;
        }
    }
    return state != whole;
}

}  // namespace

keyboard_model::keyboard_model(const typing_t& typing) {
    int time = 0;
    for (const piece_t& piece : typing) {
        time += piece.pause;
        for (const char byte : piece.bytes) {
            arrivals.push_back({time, byte == '\r' ? '\n' : byte});
        }
    }
}

std::string keyboard_model::nextKey() {
    now += drawingTime;
    std::string typedEarlier;
    takeArrived(typedEarlier);
    std::string key(1, takeByte());
    if (key.front() == escape) {
        takeArrived(key);
    }
    return key;
}

void keyboard_model::awaitEnter() {
    while (takeByte() != '\n') {
    }
}

char keyboard_model::takeByte() {
    const arrival_t arrival = arrivals.front();
    arrivals.pop_front();
    now = std::max(now, arrival.time);
    return arrival.byte;
}

/// All that has arrived; and as long as that is cut, what arrives before the gap is too long.
void keyboard_model::takeArrived(std::string& key) {
    const auto hasArrived = [&](int time) {
        return !arrivals.empty() && arrivals.front().time <= time;
    };
    while (hasArrived(now) || (isCut(key) && hasArrived(now + longestGap - 1))) {
        key += takeByte();
    }
    if (isCut(key)) {
        now += longestGap;
    }
}
