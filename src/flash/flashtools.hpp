#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "flash/fwimage.hpp"
#include "flash/operations.hpp"
#include "support/support.hpp"

/// Runs the flash core program, which lies in the working directory and does the writing.
class flashtools : public fwimage, public virtual support {
public:
    static const std::string corePath;
    static const std::string debugArgument;

    /// @param evaluate true: runOperation starts no program
    /// @param operations pairs of (menu item, flash_op_t); the first pair of a menu item wins
    /// @throws std::invalid_argument when the core program is missing, or as fwimage
    flashtools(bool evaluate, const std::vector<std::pair<int, int>>& operations);

    /// Says what is about to happen, runs the core program's operation on the terminal and waits
    /// for ENTER; in evaluation mode it pauses two seconds instead. The core program's exit status
    /// is not judged: its own output tells the user. One ENTER typed during the operation ends the
    /// wait; several are a held key and do not.
    /// @throws std::runtime_error when the menu item has no operation, the core program cannot be
    /// run, or another operation is at work on this machine
    void runOperation(int menuItem);

    /// @return true when the core program says that no emergency flash is to be offered
    /// @throws std::runtime_error when the core program cannot be run
    bool checkIspfr();

protected:
    /// @return true for a menu item that flashes or reboots
    bool isOperation(int menuItem) const;

    int evalMode;
    std::unordered_map<std::int32_t, flash_op_t> operationMap;
};
