#include "key_script.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {

constexpr int quietAfterFrame = 200;  // milliseconds
constexpr int quietAfterKey = 50;
constexpr int mostTries = 5;

}  // namespace

key_script::key_script(const contestant_t& contestant, std::vector<std::string> keys,
                       std::size_t keysInSession)
    : round(std::move(keys)) {
    timed_session session(contestant);
    frameBytes = session.countBytes(quietAfterFrame);
    for (std::size_t i = 0; i < std::min(2 * round.size(), keysInSession); ++i) {
        session.press(round[i % round.size()]);
        bytes.push_back(session.countBytes(quietAfterKey));
        if (bytes.back() == 0) {
            throw std::runtime_error(contestant.name + " does not draw for key " +
                                     std::to_string(i));
        }
    }
}

double key_script::press(timed_session& session, std::size_t index) {
    const std::size_t place = index < bytes.size() ? index : round.size() + index % round.size();
    for (int tries = 0; tries < mostTries; ++tries) {
        session.settle();
        session.press(round[index % round.size()]);
        if (const std::optional<double> time = session.awaitBytes(bytes[place])) {
            return *time;
        }
        ++lost;
    }
    throw std::runtime_error("keys are lost");
}

std::vector<std::string> arrowKeys() {
    constexpr std::size_t lines = 6;
    std::vector<std::string> keys(lines, "\x1b[B");
    keys.insert(keys.end(), lines, "\x1b[A");
    return keys;
}

std::vector<std::string> digitKeys() { return {"4", "2", "7", "3", "8", "1", "6", "5"}; }

std::size_t firstFrameBytes(const contestant_t& contestant) {
    return timed_session(contestant).countBytes(quietAfterFrame);
}
