#include "harness/process_state.hpp"

#include <fstream>

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
    std::ifstream status("/proc/" + std::to_string(process) + "/stat");
    std::string text;
    std::getline(status, text);
    return text.find(") Z ") == std::string::npos && !text.empty();
}
