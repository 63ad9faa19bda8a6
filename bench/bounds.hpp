#pragma once

#include <optional>
#include <string>
#include <vector>

#include "figures.hpp"

/// Something that varnmenu promises, or only a comparison.
struct bound_t {
    std::string what;
    double value;                ///< as measured
    std::optional<double> most;  ///< that it may be; none for a comparison
};

/// @param longFiles two, of which the second has the more lines
/// @param lines how many times as many
std::vector<bound_t> bounds(const figures_t& figures, const long_files_t& longFiles, double lines);
