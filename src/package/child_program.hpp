#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "package/descriptor.hpp"

/// A program that is given bytes and asked for its answer. Nothing of it can stand still: its
/// output goes into memory, and it is given bytes only as it takes them.
class child_program {
public:
    enum class errors_t { kept, shown };

    /// @param words the program, looked up along PATH, and its arguments; "/proc/self/fd/3" names
    /// the file
    /// @param file what the program finds there, all of it
    /// @param errors what becomes of its standard error: into the answer, or onto ours
    /// @throws std::runtime_error when it cannot be started
    child_program(std::vector<std::string> words, std::string_view file, errors_t errors);

    /// One that has not been waited for is ended.
    ~child_program();

    child_program(const child_program&) = delete;
    child_program& operator=(const child_program&) = delete;

    /// Gives it the next bytes; one that has closed its standard input gets no more.
    /// @throws interrupted
    void take(std::string_view bytes);

    /// Waits for its end, after it has got all bytes.
    /// @return its exit status, 128 and the signal's number for a death by a signal
    /// @throws interrupted
    int end();

    /// @return what it has printed, in the first MB
    std::string output() const;
    std::string errors() const;

private:
    void start(std::vector<std::string>& words, int given, int file, errors_t kept);

    descriptor input;
    descriptor answer;
    descriptor complaints;
    bool isListening = true;
    pid_t child = -1;
};
