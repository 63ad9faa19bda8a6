#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "package/findings.hpp"

/// Finds what is wrong with a release file. One with no findings is taken by release_info, and the
/// core program takes the image's name as it stands.
/// @param text its first bytes, one more than the largest may have
/// @return the name of the image, if it is one that can be looked for
std::optional<std::string> checkReleaseText(std::string_view text, findings& found);
