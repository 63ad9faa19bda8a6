#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "package/findings.hpp"

/// What a package is made of.
struct package_parts_t {
    std::string image;  ///< paths of files
    std::string core;
    std::string tool;
    std::string documents;  ///< path of a folder
    std::string release;    ///< values of the release file
    std::string sdr;
    std::string system;
    std::uint64_t time = 0;  ///< of all files, in seconds since 1970-01-01 00:00 UTC
};

/// Makes a package, its archive, the checksum and, with a key, the signature. They appear at their
/// places only when all of them are made and the archive has been verified.
/// @param output path of the package; the others have ".tar", ".tar.sha256" and ".tar.sig" as well
/// @param key of OpenSSH, or nothing
/// @return what is wrong with the package, which is not made then
/// @throws std::runtime_error when it cannot be made; interrupted
findings makePackage(const package_parts_t& parts, const std::string& output,
                     const std::string& key);

/// @return path without the slashes at its end
std::string withoutSlashes(std::string path);

/// @return the last part of a path
std::string lastPart(const std::string& path);

/// @return the directory that the last part is in
std::string parentOf(const std::string& path);
