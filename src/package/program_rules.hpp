#pragma once

#include <string>
#include <string_view>

#include "package/findings.hpp"
#include "package/package_contents.hpp"

/// Finds what keeps a program from being started.
/// @return the machine that an ELF program is for, as "uname -m" has it; empty for a script, which
/// is for all of them, and for what is no program
std::string checkProgram(std::string_view path, const package_file_t& file, findings& found);

/// @return true unless the machines are two that do not run programs of each other
bool runOnOneMachine(std::string_view one, std::string_view other);
