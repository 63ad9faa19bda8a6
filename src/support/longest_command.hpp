#pragma once

#include <cstddef>

/// What support::runCommand can run, in characters.
inline constexpr std::size_t longestCommand = 254;
