#include <memory>

#include "key_script.hpp"
#include "measures.hpp"
#include "process_figures.hpp"
#include "timed_session.hpp"

namespace {

/// What the keys of one kind cost.
struct key_costs_t {
    samples_by_contestant_t latency;
    samples_by_contestant_t processorTime;
    samples_by_contestant_t writes;
    samples_by_contestant_t bytes;
    samples_by_contestant_t peakMemory;
};

/// One contestant with its session.
class player {
public:
    player(const contestant_t& who, const std::vector<std::string>& keys)
        : contestant(who), script(who, keys) {}

    void start() {
        session = std::make_unique<timed_session>(contestant);
        session->awaitBytes(script.firstFrame());
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
        costs.processorTime.at(id).push_back(since(timeBefore, processorTime(process)) / 1000);
        costs.writes.at(id).push_back(since(writesBefore, writeCalls(process)));
        costs.bytes.at(id).push_back(since(bytesBefore, writtenBytes(process)));
    }

    void end(std::size_t id, key_costs_t& costs) {
        costs.peakMemory.at(id).push_back(static_cast<double>(peakMemory(session->process())));
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
            players.emplace_back(id, player(contestants.at(id), keys));
        }
    }
    key_costs_t costs;
    for (int round = 0; round < extent.sessions; ++round) {
        for (auto& [id, each] : players) {
            each.start();
        }
        for (int key = 0; key < extent.keys; ++key) {
            for (auto& [id, each] : players) {
                each.press(static_cast<std::size_t>(key), id, costs);
            }
        }
        for (auto& [id, each] : players) {
            each.end(id, costs);
        }
    }
    return costs;
}

samples_by_contestant_t percentiles(const samples_by_contestant_t& samples, double percent,
                                    int keysPerSession) {
    samples_by_contestant_t results;
    for (std::size_t id = 0; id < contestant_count; ++id) {
        const samples_t& all = samples.at(id);
        for (auto first = all.begin(); first != all.end(); first += keysPerSession) {
            results.at(id).push_back(percentile({first, first + keysPerSession}, percent));
        }
    }
    return results;
}

}  // namespace

rows_t measureKeys(const contestants_t& contestants, const extent_t& extent) {
    const key_costs_t arrows = play(contestants, arrowKeys(), false, extent);
    const key_costs_t digits = play(contestants, digitKeys(), true, extent);
    return {
        {"arrow key to redraw, us", 0, arrows.latency},
        {"- 99th percentile", 0, percentiles(arrows.latency, 99, extent.keys)},
        {"digit to redraw, us", 0, digits.latency},
        {"- 99th percentile", 0, percentiles(digits.latency, 99, extent.keys)},
        {"CPU time per arrow key, us", 0, arrows.processorTime},
        {"CPU time per digit, us", 0, digits.processorTime},
        {"write calls per arrow key", 0, arrows.writes},
        {"bytes per arrow key", 0, arrows.bytes},
        {"peak memory, kB", 0, arrows.peakMemory},
    };
}
