#pragma once

#include <sys/types.h>

#include <map>
#include <ostream>
#include <string>
#include <vector>

/// What to start, and how.
struct program_t {
    std::string path;
    std::vector<std::string> arguments;  ///< with the program word in front
    std::map<std::string, std::string> environment;
    std::string directory;
    uid_t user = 0;
};

/// What a program that needs no terminal has come to.
struct outcome_t {
    int status = 0;      ///< exit status, or 128 and the signal's number as a shell counts
    std::string output;  ///< what it wrote to standard output
    std::string errors;  ///< what it wrote to standard error

    bool operator==(const outcome_t&) const = default;
};

/// For the messages of tests.
std::ostream& operator<<(std::ostream& stream, const outcome_t& outcome);

/// @return the texts as execve(2) takes them
std::vector<char*> nullTerminated(std::vector<std::string>& texts);

/// Runs a program to its end, with nothing to read.
outcome_t outcomeOf(const program_t& program);

/// Lets a child process forget how what started the tests treats signals.
void resetSignals();

/// Becomes the program, with the standard streams as they are and no other descriptor.
[[noreturn]] void execute(const program_t& program);
