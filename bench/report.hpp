#pragma once

#include <ostream>

#include "measures.hpp"

/// Prints the table: by row and contestant the median, least and most, and the ratios of medians.
void printRows(std::ostream& out, const rows_t& rows, const contestants_t& contestants);
