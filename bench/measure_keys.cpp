#include <memory>

#include "key_script.hpp"
#include "measures.hpp"
#include "process_figures.hpp"
#include "timed_session.hpp"

namespace {

constexpr double nanosecondsPerMicrosecond = 1000;
constexpr double rareLatency = 99;  // percent of the keys that are no slower

/// What the keys of one kind cost.
struct key_costs_t {
    samples_by_contestant_t latency;
    samples_by_contestant_t processorTime;
    samples_by_contestant_t writes;
    samples_by_contestant_t bytes;
    samples_by_contestant_t peakMemory;
    samples_by_contestant_t lostKeys;
};

/// One contestant with its session.
class player {
public:
    player(const contestant_t& who, const std::vector<std::string>& keys, std::size_t keyCount)
        : contestant(who), script(who, keys, keyCount) {}

    void start() {
        session = std::make_unique<timed_session>(contestant);
        session->awaitFrame(script.firstFrame());
    }

    void press(std::size_t index, std::size_t id, key_costs_t& costs) {
        session->settle();
        const pid_t process = session->process();
        const std::int64_t timeBefore = processorTime(process);
        const std::int64_t writesBefore = writeCalls(process);
        const std::int64_t bytesBefore = writtenBytes(process);
        costs.latency.at(id).push_back(script.press(*session, index));
        session->settle();
        const auto since = [](std::int64_t before, std::int64_t now) {
            return static_cast<double>(now - before);
        };
        costs.processorTime.at(id).push_back(since(timeBefore, processorTime(process)) /
                                             nanosecondsPerMicrosecond);
        costs.writes.at(id).push_back(since(writesBefore, writeCalls(process)));
        costs.bytes.at(id).push_back(since(bytesBefore, writtenBytes(process)));
    }

    void end(std::size_t id, key_costs_t& costs) {
        costs.peakMemory.at(id).push_back(static_cast<double>(peakMemory(session->process())));
        costs.lostKeys.at(id).push_back(script.lostKeys());
        session.reset();
    }

private:
    contestant_t contestant;
    key_script script;
    std::unique_ptr<timed_session> session;
};

key_costs_t play(const contestants_t& contestants, const std::vector<std::string>& keys,
                 bool areDigits, const extent_t& extent) {
    std::vector<std::pair<std::size_t, player>> players;
    for (std::size_t id = 0; id < contestant_count; ++id) {
        if (!areDigits || contestants.at(id).knowsDigits) {
            players.emplace_back(id, player(contestants.at(id), keys, extent.keys));
        }
    }
    key_costs_t costs;
    for (std::size_t round = 0; round < extent.sessions; ++round) {
        for (auto& [id, each] : players) {
            each.start();
        }
        for (std::size_t key = 0; key < extent.keys; ++key) {
            for (auto& [id, each] : players) {
                each.press(key, id, costs);
            }
        }
        for (auto& [id, each] : players) {
            each.end(id, costs);
        }
    }
    return costs;
}

samples_by_contestant_t percentiles(const samples_by_contestant_t& samples, double percent,
                                    std::size_t keysPerSession) {
    samples_by_contestant_t results;
    for (std::size_t id = 0; id < contestant_count; ++id) {
        const samples_t& all = samples.at(id);
        const auto count = static_cast<std::ptrdiff_t>(keysPerSession);
        for (auto first = all.begin(); first != all.end(); first += count) {
            results.at(id).push_back(percentile({first, first + count}, percent));
        }
    }
    return results;
}

}  // namespace

void measureKeys(const contestants_t& contestants, const extent_t& extent, figures_t& figures) {
    const key_costs_t arrows = play(contestants, arrowKeys(), false, extent);
    figures[arrow_latency] = arrows.latency;
    figures[arrow_latency_99] = percentiles(arrows.latency, rareLatency, extent.keys);
    figures[arrow_processor] = arrows.processorTime;
    figures[arrow_writes] = arrows.writes;
    figures[arrow_bytes] = arrows.bytes;
    figures[lost_keys] = arrows.lostKeys;
    figures[peak_memory] = arrows.peakMemory;
    const key_costs_t digits = play(contestants, digitKeys(), true, extent);
    figures[digit_latency] = digits.latency;
    figures[digit_latency_99] = percentiles(digits.latency, rareLatency, extent.keys);
    figures[digit_processor] = digits.processorTime;
}
