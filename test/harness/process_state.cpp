#include "harness/process_state.hpp"

#include <sys/syscall.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

/// @return the line of the process in proc(5), "stat"; empty without one
std::string stateOf(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    std::getline(status, line);
    return line;
}

}  // namespace

system_call_t currentSystemCall(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/syscall");
    system_call_t call;
    long number = 0;
    if (file >> number) {  // not so for "running"
        call.number = number;
        for (std::uint32_t& argument : call.arguments) {
            std::uint64_t value = 0;
            file >> std::hex >> value;
            argument = static_cast<std::uint32_t>(value);
        }
    }
    return call;
}

// Younger architectures have the second one alone.
bool isEpollWait(const system_call_t& call) {
#ifdef SYS_epoll_wait
    if (call.number == SYS_epoll_wait) {
        return true;
    }
#endif
    return call.number == SYS_epoll_pwait;
}

bool isPoll(const system_call_t& call) {
#ifdef SYS_poll
    if (call.number == SYS_poll) {
        return true;
    }
#endif
    return call.number == SYS_ppoll;
}

std::string timesBlocked(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("voluntary_ctxt_switches:")) {
            return line;
        }
    }
    return "";
}

bool isAlive(pid_t process) {
    const std::string state = stateOf(process);
    return !state.empty() && state.find(") Z ") == std::string::npos;
}

bool isStopped(pid_t process) { return stateOf(process).find(") T ") != std::string::npos; }

std::ptrdiff_t openDescriptors() {
    const std::filesystem::directory_iterator open("/proc/self/fd");
    return std::distance(begin(open), end(open));
}
