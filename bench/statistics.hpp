#pragma once

#include <vector>

/// What was measured of one thing, in any order.
using samples_t = std::vector<double>;

/// @param samples at least one
double median(samples_t samples);

/// @param samples at least one
/// @param percent 0 to 100
/// @return the smallest sample that so many of all samples do not exceed
double percentile(samples_t samples, double percent);

double least(const samples_t& samples);
double most(const samples_t& samples);
