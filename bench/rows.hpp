#pragma once

#include <array>
#include <string>
#include <vector>

#include "contestants.hpp"
#include "statistics.hpp"

using samples_by_contestant_t = std::array<samples_t, contestant_count>;

/// One line of the table: what was measured, in which unit, and by contestant how often and with
/// what result; nothing where a contestant has no such thing.
struct row_t {
    std::string what;
    int decimals;
    samples_by_contestant_t samples;
};

using rows_t = std::vector<row_t>;
