#include "process_figures.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace {

std::string pathOf(pid_t process, const std::string& file) {
    return "/proc/" + std::to_string(process) + "/" + file;
}

/// The number after this word.
std::int64_t numberAfter(const std::string& path, const std::string& name) {
    std::ifstream file(path);
    for (std::string word; file >> word;) {
        std::int64_t number = 0;
        if (word == name && file >> number) {
            return number;
        }
    }
    throw std::runtime_error("no " + name + " in " + path);
}

}  // namespace

std::int64_t processorTime(pid_t process) {
    std::ifstream file(pathOf(process, "schedstat"));
    std::int64_t nanoseconds = 0;
    if (!(file >> nanoseconds)) {
        throw std::runtime_error("no processor time in " + pathOf(process, "schedstat"));
    }
    return nanoseconds;
}

std::int64_t peakMemory(pid_t process) { return numberAfter(pathOf(process, "status"), "VmHWM:"); }

std::int64_t writeCalls(pid_t process) { return numberAfter(pathOf(process, "io"), "syscw:"); }

std::int64_t writtenBytes(pid_t process) { return numberAfter(pathOf(process, "io"), "wchar:"); }

std::int64_t openDescriptors(pid_t process) {
    const std::filesystem::directory_iterator all(pathOf(process, "fd"));
    return std::distance(begin(all), end(all));
}

bool isAsleep(pid_t process) {
    std::ifstream file(pathOf(process, "stat"));
    std::string text;
    std::getline(file, text);
    return text.find(") S ") != std::string::npos;
}
