#include <chrono>
#include <list>
#include <thread>

#include "measures.hpp"
#include "process_figures.hpp"
#include "timed_session.hpp"

namespace {

constexpr int quiet = 200;  // milliseconds
constexpr double nanosecondsPerMillisecond = 1e6;

/// A session that waits in some state.
struct waiter_t {
    figure_id_t figure;
    std::size_t id;
    timed_session session;
    std::int64_t timeBefore = 0;

    waiter_t(const contestants_t& contestants, figure_id_t measured, std::size_t who,
             const std::vector<std::string>& keys)
        : figure(measured), id(who), session(contestants.at(who)) {
        session.countBytes(quiet);
        for (const std::string& key : keys) {
            session.settle();
            session.press(key);
            session.countBytes(quiet);
        }
        session.settle();
    }
};

}  // namespace

void measureIdle(const contestants_t& contestants, const extent_t& extent, figures_t& figures) {
    std::list<waiter_t> waiters;
    for (std::size_t id = 0; id < contestant_count; ++id) {
        waiters.emplace_back(contestants, idle_menu, id, std::vector<std::string>{});
    }
    waiters.emplace_back(contestants, idle_warning, ours, std::vector<std::string>{"9"});
    waiters.emplace_back(contestants, idle_flash, ours, std::vector<std::string>{"1", "\n"});
    for (waiter_t& waiter : waiters) {
        waiter.timeBefore = processorTime(waiter.session.process());
    }
    std::this_thread::sleep_for(std::chrono::seconds(extent.idleSeconds));
    for (const waiter_t& waiter : waiters) {
        const auto time = processorTime(waiter.session.process()) - waiter.timeBefore;
        figures[waiter.figure].at(waiter.id).push_back(static_cast<double>(time) /
                                                       nanosecondsPerMillisecond);
    }
}
