#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "contestants.hpp"
#include "statistics.hpp"

/// What is measured of the contestants. Some of it is only measured of ours.
enum figure_id_t {
    start_time,
    start_system_calls,
    arrow_system_calls,
    arrow_latency,
    arrow_latency_99,
    digit_latency,
    digit_latency_99,
    arrow_processor,
    digit_processor,
    arrow_writes,
    arrow_bytes,
    lost_keys,
    peak_memory,
    idle_menu,
    idle_warning,
    idle_flash,
    young_latency,
    old_latency,
    young_processor,
    old_processor,
    young_descriptors,
    old_descriptors
};

using samples_by_contestant_t = std::array<samples_t, contestant_count>;
using figures_t = std::map<figure_id_t, samples_by_contestant_t>;

/// What a release file of many lines costs, and how long grep(1) takes to look through it.
struct long_file_t {
    std::string package;
    samples_t milliseconds;  ///< of the start, beyond the start with the file of the demo package
    samples_t peakMemory;    ///< of the whole program, in kilobytes
    samples_t usualMemory;   ///< the same with the file of the demo package
    samples_t grepMilliseconds;  ///< beyond the time for the file of the demo package
};
using long_files_t = std::vector<long_file_t>;
