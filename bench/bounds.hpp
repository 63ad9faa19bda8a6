#pragma once

#include <string>
#include <vector>

#include "figures.hpp"

/// Something that the tool promises.
struct bound_t {
    std::string what;
    double value;  ///< as measured
    double most;   ///< that it may be
};

/// @param longFiles two, of which the second has the more lines
/// @param lines how many times as many
std::vector<bound_t> bounds(const figures_t& figures, const long_files_t& longFiles, double lines);
