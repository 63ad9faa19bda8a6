#include "package/printable.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

constexpr std::string_view plainCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._+-";
constexpr std::size_t longestPlainName = 100;

bool isPrintableByte(char byte) { return byte >= ' ' && byte <= '~'; }

}  // namespace

std::string printable(std::string_view text) {
    std::string shown;
    for (const char byte : text) {
        if (byte == '\\') {
            shown += "\\\\";
        } else if (isPrintableByte(byte)) {
            shown += byte;
        } else {
            std::array<char, sizeof "\\ooo"> escape{};
            std::snprintf(escape.data(), escape.size(), "\\%03o", static_cast<unsigned char>(byte));
            shown += escape.data();
        }
    }
    return shown;
}

bool isPrintable(std::string_view text) { return std::ranges::all_of(text, isPrintableByte); }

bool isPlainName(std::string_view name) {
    return !name.empty() && name.size() <= longestPlainName && name.front() != '.' &&
           name.front() != '-' && name.find_first_not_of(plainCharacters) == std::string_view::npos;
}
