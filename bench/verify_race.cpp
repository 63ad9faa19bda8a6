// Races the verifying of a firmware package against sha256sum, which reads the same bytes.
//
//   verify_race ROUNDS PROGRAM ARCHIVE

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "report.hpp"

namespace {

struct run_t {
    double seconds;
    double peakMemory;  // kB
};

run_t run(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const auto start = std::chrono::steady_clock::now();
    const int error =
        posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    rusage usage{};
    if (error != 0 || wait4(child, &status, 0, &usage) != child || status != 0) {
        throw std::runtime_error("cannot run " + words[0]);
    }
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    return {time.count(), static_cast<double>(usage.ru_maxrss)};
}

void race(int rounds, const std::string& program, const std::string& archive) {
    samples_t ours;
    samples_t others;
    samples_t memory;
    for (int round = 0; round < rounds; ++round) {
        const run_t verify = run({program, "verify", archive});
        ours.push_back(verify.seconds);
        memory.push_back(verify.peakMemory);
        others.push_back(run({"sha256sum", archive}).seconds);
    }
    constexpr double mostTimes = 1.5;
    constexpr double mostMemory = 16;
    constexpr double kilobytes = 1024;
    printBounds(std::cout, {{"time to verify an archive / sha256sum", median(ours) / median(others),
                             mostTimes},
                            {"peak memory of that, MB", most(memory) / kilobytes, mostMemory}});
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    try {
        race(std::stoi(words.at(0)), words.at(1), words.at(2));
    } catch (const std::exception& error) {
        std::cerr << "verify_race: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
