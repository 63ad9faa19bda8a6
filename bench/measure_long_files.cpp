#include "key_script.hpp"
#include "measures.hpp"
#include "process_figures.hpp"
#include "timed_session.hpp"

namespace {

/// Searches for the same keys as varnmenu. With /dev/null as output, it would stop at the first
/// one.
contestant_t makeGrep(const std::string& package) {
    return {"grep",
            package,
            {"/usr/bin/grep", "-cE",
             "^(VARN_RELEASE|SDR_RELEASE|SYSTEM|IMAGE_NAME)=", "releasefile-information.txt"},
            false};
}

constexpr std::size_t grepBytes = 3;  // "4", carriage return, line feed

struct reading_t {
    double milliseconds;
    double grepMilliseconds;
    double peakMemory;
};

reading_t read(const std::string& package, std::size_t frame) {
    timed_session tool(makeOurs(package));
    const double milliseconds = tool.awaitFrame(frame);
    const auto memory = static_cast<double>(peakMemory(tool.process()));
    timed_session grep(makeGrep(package));
    return {milliseconds, grep.awaitFrame(grepBytes), memory};
}

}  // namespace

long_files_t measureLongFiles(const std::string& package,
                              const std::vector<std::string>& longPackages,
                              const extent_t& extent) {
    const std::size_t frame = firstFrameBytes(makeOurs(package));
    long_files_t files;
    for (const std::string& longPackage : longPackages) {
        files.push_back({longPackage, {}, {}, {}, {}});
    }
    for (std::size_t round = 0; round < extent.longFileReads; ++round) {
        for (long_file_t& file : files) {
            const reading_t usual = read(package, frame);
            const reading_t reading = read(file.package, frame);
            file.milliseconds.push_back(reading.milliseconds - usual.milliseconds);
            file.peakMemory.push_back(reading.peakMemory);
            file.usualMemory.push_back(usual.peakMemory);
            file.grepMilliseconds.push_back(reading.grepMilliseconds - usual.grepMilliseconds);
        }
    }
    return files;
}
