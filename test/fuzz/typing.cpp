#include "fuzz/typing.hpp"

#include <sstream>

typing_t typingOf(const std::string& text) {
    typing_t typing;
    std::istringstream rest(text.empty() ? text : text.substr(1, longestTyping));
    for (std::string piece; std::getline(rest, piece, '|');) {
        if (piece.size() > 1) {
            typing.push_back({static_cast<unsigned char>(piece.front()), piece.substr(1)});
        }
    }
    constexpr int longAfterAll = 1000;
    for (const char* key : {"x", "\n", "\x03"}) {
        typing.push_back({longAfterAll, key});
    }
    return typing;
}
