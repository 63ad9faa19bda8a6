#include "statistics.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

double median(samples_t samples) {
    std::sort(samples.begin(), samples.end());
    const std::size_t half = samples.size() / 2;
    const bool isOdd = samples.size() % 2 != 0;
    return isOdd ? samples.at(half) : (samples.at(half - 1) + samples.at(half)) / 2;
}

double percentile(samples_t samples, double percent) {
    std::sort(samples.begin(), samples.end());
    const double rank = std::ceil(static_cast<double>(samples.size()) * percent / 100);
    return samples.at(static_cast<std::size_t>(std::max(rank, 1.0)) - 1);
}

double least(const samples_t& samples) { return *std::min_element(samples.begin(), samples.end()); }

double most(const samples_t& samples) { return *std::max_element(samples.begin(), samples.end()); }
