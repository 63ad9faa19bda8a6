#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>

#include "measures.hpp"
#include "timed_session.hpp"

namespace {

constexpr int quiet = 500;  // milliseconds

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

}  // namespace

void measureSystemCalls(const contestants_t& contestants, const extent_t&, figures_t& figures) {
    for (std::size_t id = 0; id < contestant_count; ++id) {
        const temporary_file trace;
        contestant_t traced = contestants.at(id);
        const std::vector<std::string> strace{"/usr/bin/strace", "-qq", "-o", trace.path()};
        traced.command.insert(traced.command.begin(), strace.begin(), strace.end());
        timed_session(traced).countBytes(quiet);
        figures[system_calls].at(id).push_back(callsToLastWrite(trace.path()));
    }
}
