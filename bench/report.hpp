#pragma once

#include <ostream>

#include "bounds.hpp"
#include "figures.hpp"

// The tables, as text that is read as it is and as Markdown.

/// By figure and contestant the median, the least and the most.
void printFigures(std::ostream& out, const figures_t& figures, const contestants_t& contestants);

void printLongFiles(std::ostream& out, const long_files_t& files);

void printBounds(std::ostream& out, const std::vector<bound_t>& bounds);
