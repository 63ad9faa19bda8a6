#pragma once

#include <cstdint>

#include "fuzz/fuzz_package.hpp"
#include "harness/pseudo_terminal.hpp"

/// What the application finds at its start: a firmware package around the working directory, and a
/// terminal on standard input. What is drawn goes to standard output, which a benchmark has on the
/// null device.
class surroundings {
public:
    /// @param releaseLines lines of the release file on top of those that are needed
    explicit surroundings(std::int64_t releaseLines = 0);

private:
    fuzz_package package;
    pseudo_terminal terminal;
};
