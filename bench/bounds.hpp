#pragma once

#include <optional>
#include <string>
#include <vector>

#include "figures.hpp"

/// A limit that varnmenu keeps, or a mere comparison.
struct bound_t {
    std::string what;
    double value;                ///< as measured
    std::optional<double> most;  ///< the greatest that is allowed; none for a mere comparison
};

/// @param longFiles two, of which the second has the more lines
/// @param lines how many times as many lines it has
std::vector<bound_t> bounds(const figures_t& figures, const long_files_t& longFiles, double lines);
