#include "bounds.hpp"

#include <array>

namespace {

/// Our figure may be at most this multiple of the other's; noBound only reports it.
struct ratio_bound_t {
    const char* what;
    figure_id_t figure;
    contestant_id_t other;
    std::optional<double> most;
};

constexpr std::nullopt_t noBound = std::nullopt;

constexpr std::array ratioBounds{
    ratio_bound_t{"start / whiptail", start_time, whiptail, 1},
    ratio_bound_t{"start / dialog", start_time, dialog, 1},
    ratio_bound_t{"start / limit.c", start_time, limit, 1.08},
    ratio_bound_t{"system calls to first frame / whiptail", start_system_calls, whiptail, noBound},
    ratio_bound_t{"system calls to first frame / dialog", start_system_calls, dialog, 1},
    ratio_bound_t{"arrow key to redraw / whiptail", arrow_latency, whiptail, 1},
    ratio_bound_t{"arrow key to redraw / dialog", arrow_latency, dialog, 1},
    ratio_bound_t{"arrow key to redraw / limit.c on terminfo", arrow_latency, terminfo_limit, 1.1},
    ratio_bound_t{"digit to redraw / dialog", digit_latency, dialog, 1},
    ratio_bound_t{"digit to redraw / limit.c on terminfo", digit_latency, terminfo_limit, 1.1},
    ratio_bound_t{"CPU time per arrow key / whiptail", arrow_processor, whiptail, 1},
    ratio_bound_t{"CPU time per arrow key / dialog", arrow_processor, dialog, 1},
    ratio_bound_t{"CPU time per arrow key / limit.c on terminfo", arrow_processor, terminfo_limit,
                  1.3},
    ratio_bound_t{"CPU time per digit / dialog", digit_processor, dialog, 1},
    ratio_bound_t{"CPU time per digit / limit.c on terminfo", digit_processor, terminfo_limit, 1.3},
    ratio_bound_t{"arrow key to redraw / limit.c", arrow_latency, limit, noBound},
    ratio_bound_t{"digit to redraw / limit.c", digit_latency, limit, noBound},
    ratio_bound_t{"CPU time per arrow key / limit.c with a watch", arrow_processor, watched_limit,
                  noBound},
    ratio_bound_t{"CPU time per digit / limit.c with a watch", digit_processor, watched_limit,
                  noBound},
    ratio_bound_t{"write calls per arrow key / whiptail", arrow_writes, whiptail, 1},
    ratio_bound_t{"write calls per arrow key / dialog", arrow_writes, dialog, 1},
    ratio_bound_t{"peak memory / whiptail", peak_memory, whiptail, 0.3},
    ratio_bound_t{"peak memory / dialog", peak_memory, dialog, 1},
};

/// No sample of our figure may be greater.
struct plain_bound_t {
    const char* what;
    figure_id_t figure;
    double most;
};

constexpr std::array plainBounds{
    plain_bound_t{"system calls per arrow key", arrow_system_calls, 11},
    plain_bound_t{"write calls per arrow key", arrow_writes, 1},
    plain_bound_t{"idle CPU time at the menu, ms", idle_menu, 1},
    plain_bound_t{"idle CPU time at a warning, ms", idle_warning, 1},
    plain_bound_t{"idle CPU time after a flash, ms", idle_flash, 1},
};

double ratio(const samples_t& dividend, const samples_t& divisor) {
    return median(dividend) / median(divisor);
}

bound_t judge(const ratio_bound_t& bound, const figures_t& figures) {
    const samples_by_contestant_t& samples = figures.at(bound.figure);
    return {bound.what, ratio(samples.at(ours), samples.at(bound.other)), bound.most};
}

}  // namespace

std::vector<bound_t> bounds(const figures_t& figures, const long_files_t& longFiles, double lines) {
    constexpr double mostUneven = 1.1;
    std::vector<bound_t> all;
    for (const ratio_bound_t& bound : ratioBounds) {
        all.push_back(judge(bound, figures));
    }
    for (const auto& [what, figure, greatest] : plainBounds) {
        all.push_back({what, most(figures.at(figure).at(ours)), greatest});
    }
    const samples_t& young = figures.at(young_processor).at(ours);
    const samples_t& old = figures.at(old_processor).at(ours);
    all.push_back({"CPU time of key 500 / key 1", ratio(old, young), mostUneven});
    const long_file_t& shorter = longFiles.at(0);
    const long_file_t& longer = longFiles.at(1);
    all.push_back({"time per line of the longer release file / of the shorter",
                   ratio(longer.milliseconds, shorter.milliseconds) / lines, mostUneven});
    all.push_back({"peak memory with the longer release file / without",
                   ratio(longer.peakMemory, shorter.usualMemory), mostUneven});
    all.push_back({"time for the longer release file / grep -c",
                   ratio(longer.milliseconds, longer.grepMilliseconds), 2});
    return all;
}
