#pragma once

#include <unistd.h>

#include <functional>
#include <string>

#include "harness/test_surroundings.hpp"
#include "support/menu_exception.hpp"
#include "support/stream.hpp"

struct open_stream : stream {
    using stream::currentInput;
    using stream::discardKnocking;
    using stream::readByte;
};

/// What one read yields: the count and the input.
inline std::string readOnce(open_stream& input) {
    try {
        const int count = input.readInput();
        return std::to_string(count) + ":" + input.currentInput;
    } catch (const menu_exception& end) {
        return end.what();
    }
}

/// What so many reads of keys yield.
inline std::string readKeys(int reads) {
    setRawMode();
    open_stream input;
    std::string all;
    for (int i = 0; i < reads; ++i) {
        all += readOnce(input) + ";";
    }
    return all;
}

/// For pieces that have to follow each other within 50 ms, which a busy machine may miss, but not
/// every time.
/// @return what a try yields, the expected result if any does
inline std::string inAnyOfManyTries(const std::string& expected,
                                    const std::function<std::string()>& attempt) {
    std::string result;
    for (int tries = 0; tries < 20 && result != expected; ++tries) {
        result = attempt();
    }
    return result;
}

/// What one read yields with this as standard input.
inline std::string readFrom(int descriptor) {
    const int original = dup(STDIN_FILENO);
    dup2(descriptor, STDIN_FILENO);
    close(descriptor);
    open_stream input;
    const std::string result = readOnce(input);
    dup2(original, STDIN_FILENO);
    close(original);
    return result;
}
