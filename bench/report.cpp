#include "report.hpp"

#include <array>
#include <filesystem>
#include <iomanip>
#include <sstream>

namespace {

/// How a figure is shown.
struct line_t {
    figure_id_t figure;
    const char* text;
    int decimals;
};

constexpr std::array lines{
    line_t{start_time, "start to first frame, ms", 2},
    line_t{start_system_calls, "system calls to first frame", 0},
    line_t{arrow_system_calls, "system calls per arrow key", 0},
    line_t{arrow_latency, "arrow key to redraw, us", 0},
    line_t{arrow_latency_99, "- 99th percentile", 0},
    line_t{digit_latency, "digit to redraw, us", 0},
    line_t{digit_latency_99, "- 99th percentile", 0},
    line_t{arrow_processor, "CPU time per arrow key, us", 0},
    line_t{digit_processor, "CPU time per digit, us", 0},
    line_t{arrow_writes, "write calls per arrow key", 0},
    line_t{arrow_bytes, "bytes written per arrow key", 0},
    line_t{lost_keys, "arrow keys lost", 0},
    line_t{peak_memory, "peak memory, kB", 0},
    line_t{idle_menu, "idle CPU time at the menu, ms", 3},
    line_t{idle_warning, "- at a warning", 3},
    line_t{idle_flash, "- after a flash", 3},
    line_t{young_latency, "arrow key to redraw around key 1, us", 0},
    line_t{old_latency, "- around key 500", 0},
    line_t{young_processor, "CPU time per arrow key around key 1, us", 0},
    line_t{old_processor, "- around key 500", 0},
    line_t{young_descriptors, "open descriptors at key 1", 0},
    line_t{old_descriptors, "- around key 500", 0},
};

std::string number(double value, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

std::string spread(const samples_t& samples, int decimals) {
    if (samples.empty()) {
        return "-";
    }
    const std::string middle = number(median(samples), decimals);
    const std::string low = number(least(samples), decimals);
    const std::string high = number(most(samples), decimals);
    return low == high ? middle : middle + " (" + low + " to " + high + ")";
}

const char* verdict(const bound_t& bound) {
    if (!bound.most) {
        return "-";
    }
    return bound.value <= *bound.most ? "yes" : "no";
}

}  // namespace

void printFigures(std::ostream& out, const figures_t& figures, const contestants_t& contestants) {
    out << "| median (least to most) |";
    std::string rule = "| --- |";
    for (const contestant_t& contestant : contestants) {
        out << " " << contestant.name << " |";
        rule += " --- |";
    }
    out << "\n" << rule << "\n";
    for (const auto& [figure, text, decimals] : lines) {
        out << "| " << text << " |";
        for (const samples_t& each : figures.at(figure)) {
            out << " " << spread(each, decimals) << " |";
        }
        out << "\n";
    }
}

void printLongFiles(std::ostream& out, const long_files_t& files) {
    out << "| lines of the release file | added to the start, ms | grep -c, ms | peak memory, kB |"
           " - with the usual file |\n| --- | --- | --- | --- | --- |\n";
    for (const long_file_t& file : files) {
        out << "| " << std::filesystem::path(file.package).filename().string() << " | "
            << spread(file.milliseconds, 1) << " | " << spread(file.grepMilliseconds, 1) << " | "
            << spread(file.peakMemory, 0) << " | " << spread(file.usualMemory, 0) << " |\n";
    }
}

void printBounds(std::ostream& out, const std::vector<bound_t>& bounds) {
    out << "| bound | at most | measured | met |\n| --- | --- | --- | --- |\n";
    for (const bound_t& bound : bounds) {
        out << "| " << bound.what << " | " << (bound.most ? number(*bound.most, 2) : "-") << " | "
            << number(bound.value, 3) << " | " << verdict(bound) << " |\n";
    }
}
