#include "key_script.hpp"
#include "measures.hpp"
#include "process_figures.hpp"
#include "timed_session.hpp"

namespace {

/// A session, the keys pressed in it, and what they took since the window began, in microseconds.
struct aging_session_t {
    timed_session session;
    std::size_t keys = 0;
    samples_t latencies{};
    samples_t processorTimes{};

    void press(key_script& script) {
        constexpr double nanosecondsPerMicrosecond = 1000;
        session.settle();
        const std::int64_t before = processorTime(session.process());
        latencies.push_back(script.press(session, keys++));
        session.settle();
        processorTimes.push_back(static_cast<double>(processorTime(session.process()) - before) /
                                 nanosecondsPerMicrosecond);
    }

    void beginWindow() {
        latencies.clear();
        processorTimes.clear();
    }
};

}  // namespace

void measureAgeing(const contestants_t& contestants, const extent_t& extent, figures_t& figures) {
    const contestant_t& contestant = contestants.at(ours);
    key_script script(contestant, arrowKeys(), extent.oldKeys + extent.windowKeys);
    for (std::size_t round = 0; round < extent.oldSessions; ++round) {
        aging_session_t old{timed_session(contestant)};
        old.session.awaitFrame(script.firstFrame());
        for (std::size_t key = 0; key < extent.oldKeys; ++key) {
            old.press(script);
        }
        old.beginWindow();
        aging_session_t young{timed_session(contestant)};
        young.session.awaitFrame(script.firstFrame());
        const auto descriptors = [](const aging_session_t& of) {
            return static_cast<double>(openDescriptors(of.session.process()));
        };
        for (std::size_t key = 0; key < extent.windowKeys; ++key) {
            young.press(script);
            old.press(script);
            if (key == 0) {
                figures[young_descriptors].at(ours).push_back(descriptors(young));
            }
        }
        figures[old_descriptors].at(ours).push_back(descriptors(old));
        figures[young_latency].at(ours).push_back(median(young.latencies));
        figures[old_latency].at(ours).push_back(median(old.latencies));
        figures[young_processor].at(ours).push_back(median(young.processorTimes));
        figures[old_processor].at(ours).push_back(median(old.processorTimes));
    }
}
