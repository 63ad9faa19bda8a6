#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "package/member.hpp"

inline constexpr std::size_t blockSize = 512;

/// The header of a member, as POSIX describes it under "ustar Interchange Format".
using ustar_header_t = std::array<char, blockSize>;

/// What a header may spell in more than one way.
struct ustar_spelling_t {
    bool namesRoot = false;     ///< "root" owns the member, not nobody; the numbers are 0 anyway
    bool numbersDevice = true;  ///< device numbers of zero, not empty ones
};

/// @return true when the name, and the slash that ends a directory's, can be put into a header
bool fitsHeader(const member_t& member);

/// @return the one header of this spelling that a member can have
/// @throws std::invalid_argument when its name, size or time does not fit
ustar_header_t encodeHeader(const member_t& member, const ustar_spelling_t& spelling = {});

/// @return what the header says, if encodeHeader makes the same one in any spelling
std::optional<member_t> decodeHeader(std::string_view header);

/// @return true for a block that is no header of any kind, or a damaged one
bool isDamagedHeader(std::string_view header);

/// @return true for a header that only gives its member to another owner
bool namesOtherOwner(std::string_view header);
