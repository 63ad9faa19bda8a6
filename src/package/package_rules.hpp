#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "docs/package_documents.hpp"
#include "flash/operations.hpp"
#include "package/findings.hpp"
#include "package/package_contents.hpp"
#include "release/release_lines.hpp"

inline constexpr std::size_t largestReleaseFile = 65536;  // bytes; a proper one has some hundred

inline constexpr std::string_view menuPath = "tool/varnmenu";
inline constexpr std::string_view corePathInPackage = "tool/varnflash";

/// What is looked at in a file of a package.
struct required_file_t {
    std::string_view path;
    std::size_t kept;  ///< so many bytes at its start, for the program to look into
};

/// The menu is kept as a whole, as a note may lie anywhere in it: it has about a megabyte.
inline constexpr std::array requiredFiles{
    required_file_t{releaseFileName, largestReleaseFile + 1},
    required_file_t{menuPath, std::size_t{8} * 1024 * 1024},
    required_file_t{corePathInPackage, 256},
};

/// Finds whatever would keep varnmenu from working with a package, or make it unsafe.
void checkPackage(const package_files_t& files, findings& found);

/// @return "varnmenu 1.0.0" for the menu of the package, if it says which one it is
std::string menuVersion(const package_files_t& files);
