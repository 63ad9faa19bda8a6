#include "fuzz/keyboard_model.hpp"

#include <algorithm>

namespace {

constexpr int longestGap = 50;
constexpr char escape = '\x1b';

/// @return true when the last sequence of the bytes is not whole
bool isCut(const std::string& bytes) {
    const std::string last = bytes.substr(std::min(bytes.rfind(escape), bytes.size()));
    const auto isFinal = [](char byte) { return byte >= 0x40 && byte != 0x7f; };
    return last == "\x1b" || last == "\x1bO" ||
           (last.starts_with("\x1b[") && std::none_of(last.begin() + 2, last.end(), isFinal));
}

std::ptrdiff_t enters(const std::string& bytes) {
    return std::count(bytes.begin(), bytes.end(), '\n');
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
    std::string typedEarlier;
    takeArrived(typedEarlier, [&] { return isCut(typedEarlier) || enters(typedEarlier) > 0; });
    std::string key(1, takeByte());
    if (key.front() != '\n') {
        lastEnter = never;
    }
    if (key.front() == escape) {
        takeArrived(key, [&] { return isCut(key); });
    }
    return key;
}

void keyboard_model::awaitEnter() {
    while (takeByte() != '\n') {
    }
}

bool keyboard_model::isOnePress() {
    const bool isPress = !isRepeat;
    if (isPress) {
        std::string rest;
        takeArrived(rest, [] { return true; });
    }
    return isPress;
}

void keyboard_model::awaitEnterAfterOperation() {
    std::string typed;
    takeArrived(typed, [&] { return isCut(typed) || enters(typed) > 1; });
    if (enters(typed) != 1) {
        awaitEnter();
    }
}

char keyboard_model::takeByte() {
    const arrival_t arrival = arrivals.front();
    arrivals.pop_front();
    now = std::max(now, arrival.time);
    if (arrival.byte == '\n') {
        isRepeat = now - lastEnter < 1000;
        lastEnter = now;
    }
    return arrival.byte;
}

/// All that has arrived; and as long as that calls for more, what arrives before the gap is too
/// long.
void keyboard_model::takeArrived(std::string& bytes, const std::function<bool()>& callsForMore) {
    const auto hasArrived = [&](int time) {
        return !arrivals.empty() && arrivals.front().time <= time;
    };
    while (hasArrived(now) || (callsForMore() && hasArrived(now + longestGap - 1))) {
        bytes += takeByte();
    }
    if (callsForMore()) {
        now += longestGap;
    }
}
