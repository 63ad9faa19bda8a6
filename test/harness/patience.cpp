#include "harness/patience.hpp"

#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace {

constexpr int usualSeconds = 10;
constexpr std::chrono::milliseconds rest(2);

}  // namespace

std::chrono::seconds patience() {
    const char* text = std::getenv("VARNMENU_PATIENCE");
    return std::chrono::seconds(text == nullptr ? usualSeconds : std::stoi(text));
}

void awaitTrue(const std::function<bool()>& condition, const std::string& what) {
    const auto deadline = std::chrono::steady_clock::now() + patience();
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("waited in vain for " + what);
        }
        std::this_thread::sleep_for(rest);
    }
}
