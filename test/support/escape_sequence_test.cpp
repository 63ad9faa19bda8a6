#include "support/escape_sequence.hpp"

#include <gtest/gtest.h>

#include <string_view>

namespace {

bool isUnfinishedAfter(std::string_view bytes) {
    escape_sequence sequence;
    for (const char byte : bytes) {
        sequence.add(byte);
    }
    return sequence.isUnfinished();
}

}  // namespace

TEST(EscapeSequence, IsUnfinishedUntilItsLastByte) {
    for (const std::string_view bytes : {"\x1b", "\x1b[", "\x1bO", "\x1b[1;5", "\x1b[\x7f",
                                         "x\x1b[", "\x1b[A\x1b", "\x1b[1\x1b", "\x1b[1\x1b["}) {
        EXPECT_TRUE(isUnfinishedAfter(bytes)) << bytes;
    }
}

TEST(EscapeSequence, IsWholeWithItsLastByte) {
    for (const std::string_view bytes :
         {"", "x", "[", "\x1b[A", "\x1bOA", "\x1b[@", "\x1b[~", "\x1b[1;5A", "\x1b[[", "\x1bx",
          "\x1b\x7f", "\x1bO\x01", "\x1b[A[", "\x1b[AO"}) {
        EXPECT_FALSE(isUnfinishedAfter(bytes)) << bytes;
    }
}
