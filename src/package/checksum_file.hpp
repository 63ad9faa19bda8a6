#pragma once

#include <string>
#include <string_view>

#include "package/findings.hpp"

/// Finds whether a checksum file says what it should: one line as "sha256sum FILE" writes it.
/// @param path of the checksum file, for findings
/// @param text what is in it
/// @param archive the archive's path as it was given, for findings
/// @param digits the archive's SHA-256 checksum, as sha256::digits() has it
void checkChecksum(const std::string& path, std::string_view text, const std::string& archive,
                   const std::string& digits, findings& found);
