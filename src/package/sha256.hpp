#pragma once

#include <nettle/sha2.h>

#include <string>
#include <string_view>

/// The SHA-256 checksum of bytes that come in pieces.
class sha256 {
public:
    sha256() { sha256_init(&state); }

    void take(std::string_view bytes);

    /// @return 64 lower-case hexadecimal digits; the next bytes begin another checksum
    std::string digits();

private:
    sha256_ctx state{};
};
