#pragma once

#include <map>
#include <string>

/// The command and its options, as they were given.
struct command_line_t {
    std::string command;
    std::string operand;
    std::map<std::string, std::string> options;  ///< by name, without the dashes

    /// @return the option's value, empty where it was not given
    std::string value(const std::string& option) const;
};

/// @return what is to be done; "help" and "version" are commands, too
/// @throws std::invalid_argument when the command line is wrong
command_line_t parseCommandLine(int count, char** words);
