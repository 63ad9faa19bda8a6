#include "package/sha256.hpp"

#include <array>
#include <cstdint>
#include <cstdio>

void sha256::take(std::string_view bytes) {
    sha256_update(&state, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
}

std::string sha256::digits() {
    constexpr std::string_view hexadecimal = "0123456789abcdef";
    constexpr unsigned base = hexadecimal.size();
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
    sha256_digest(&state, digest.size(), digest.data());
    std::string text;
    for (const std::uint8_t byte : digest) {
        text += hexadecimal[byte / base];
        text += hexadecimal[byte % base];
    }
    return text;
}
