#include "package/progress.hpp"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "package/printable.hpp"

namespace {

constexpr std::uint64_t whole = 100;

}  // namespace

progress::progress(const std::string& what, std::uint64_t size, std::chrono::milliseconds interval)
    : name(printable(what)),
      all(std::max<std::uint64_t>(size, 1)),
      isWatched(isatty(STDERR_FILENO) == 1),
      wait(interval),
      next(clock_t::now() + wait) {}

progress::~progress() {
    if (isShown) {
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(name.size() + sizeof ": 100 %" - 1), "");
    }
}

void progress::add(std::uint64_t bytes) {
    done += bytes;
    if (isWatched && clock_t::now() >= next) {
        std::fprintf(stderr, "\r%s: %d %%", name.c_str(), static_cast<int>(done * whole / all));
        isShown = true;
        next += wait;
    }
}
