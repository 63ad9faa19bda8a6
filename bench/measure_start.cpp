#include "key_script.hpp"
#include "measures.hpp"
#include "timed_session.hpp"

void measureStart(const contestants_t& contestants, const extent_t& extent, figures_t& figures) {
    std::array<std::size_t, contestant_count> frames{};
    for (std::size_t id = 0; id < contestant_count; ++id) {
        frames.at(id) = firstFrameBytes(contestants.at(id));
    }
    for (std::size_t round = 0; round < extent.starts; ++round) {
        for (std::size_t id = 0; id < contestant_count; ++id) {
            timed_session session(contestants.at(id));
            figures[start_time].at(id).push_back(session.awaitFrame(frames.at(id)));
        }
    }
}
