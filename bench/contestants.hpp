#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

/// Who is compared; the index of everything that is kept by contestant.
enum contestant_id_t : std::size_t {
    ours,
    whiptail,
    dialog,
    limit,
    watched_limit,
    terminfo_limit,
    contestant_count
};

/// A program that shows a menu.
struct contestant_t {
    std::string name;
    std::string directory;             ///< its working directory
    std::vector<std::string> command;  ///< absolute path and arguments
    bool knowsDigits;                  ///< a digit moves its highlight
};

using contestants_t = std::array<contestant_t, contestant_count>;

/// All show the same eight entries under the same title.
/// @param package a firmware package with the tool in its tool folder
/// @param limitProgram the smallest program that shows the menu, see limit.c
contestants_t makeContestants(const std::string& package, const std::string& limitProgram);

/// The tool in another package.
contestant_t makeOurs(const std::string& package);
