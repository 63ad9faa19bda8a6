#pragma once

#include "package/command_line.hpp"

/// Does what the command line says, and prints what has come of it.
/// @return the exit status
/// @throws std::invalid_argument when the command line is wrong; std::runtime_error when something
/// cannot be done; interrupted
int runCommandLine(const command_line_t& line);
