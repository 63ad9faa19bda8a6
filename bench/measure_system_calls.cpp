#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>

#include "measures.hpp"
#include "timed_session.hpp"

namespace {

constexpr int quiet = 500;  // milliseconds
constexpr int keys = 5;     // down: none of them gets to the last entry

/// A file that is removed at the end.
class temporary_file {
public:
    temporary_file() {
        const int descriptor = mkstemp(name.data());
        if (descriptor < 0) {
            throw std::runtime_error("no temporary file");
        }
        close(descriptor);
    }
    ~temporary_file() { unlink(name.c_str()); }

    temporary_file(const temporary_file&) = delete;
    temporary_file& operator=(const temporary_file&) = delete;

    const std::string& path() const { return name; }

private:
    std::string name = "/tmp/varnmenu-calls-XXXXXX";
};

/// The lines up to the last write; those of signals are no calls.
int callsToLastWrite(const std::string& path) {
    std::ifstream trace(path);
    int calls = 0;
    int callsThen = 0;
    for (std::string line; std::getline(trace, line);) {
        calls += line.starts_with("---") ? 0 : 1;
        if (line.starts_with("write(")) {
            callsThen = calls;
        }
    }
    return callsThen;
}

/// @return the calls up to the drawing for the last of so many keys
int callsFor(contestant_t contestant, int keyCount) {
    const temporary_file trace;
    const std::vector<std::string> strace{"/usr/bin/strace", "-qq", "-o", trace.path()};
    contestant.command.insert(contestant.command.begin(), strace.begin(), strace.end());
    {
        timed_session session(contestant);
        session.countBytes(quiet);
        for (int key = 0; key < keyCount; ++key) {
            session.press("\x1b[B");
            session.countBytes(quiet);
        }
    }
    return callsToLastWrite(trace.path());
}

}  // namespace

void measureSystemCalls(const contestants_t& contestants, const extent_t&, figures_t& figures) {
    for (std::size_t id = 0; id < contestant_count; ++id) {
        figures[start_system_calls].at(id).push_back(callsFor(contestants.at(id), 0));
        // Before its first key the C library also asks what standard input is.
        const int withOneKey = callsFor(contestants.at(id), 1);
        const int withMoreKeys = callsFor(contestants.at(id), 1 + keys);
        figures[arrow_system_calls].at(id).push_back(
            static_cast<double>(withMoreKeys - withOneKey) / keys);
    }
}
