#include <stdexcept>

#include "key_script.hpp"
#include "measures.hpp"
#include "timed_session.hpp"

rows_t measureStart(const contestants_t& contestants, const extent_t& extent) {
    row_t row{"start to first frame, ms", 2, {}};
    std::array<std::size_t, contestant_count> frames{};
    for (std::size_t i = 0; i < contestant_count; ++i) {
        frames.at(i) = firstFrameBytes(contestants.at(i));
    }
    for (int round = 0; round < extent.starts; ++round) {
        for (std::size_t i = 0; i < contestant_count; ++i) {
            timed_session session(contestants.at(i));
            const std::optional<double> time = session.awaitBytes(frames.at(i));
            if (!time) {
                throw std::runtime_error(contestants.at(i).name + " does not start");
            }
            row.samples.at(i).push_back(*time / 1000);
        }
    }
    return {row};
}
