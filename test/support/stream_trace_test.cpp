#include <gtest/gtest.h>

#include "harness/test_surroundings.hpp"
#include "support/stream.hpp"

namespace {

struct masked_stream : stream {
    explicit masked_stream(std::uint32_t mask) { levelMask = mask; }
};

std::string traced(stream& log, std::uint32_t level, const std::string& message,
                   const std::string& lead) {
    captured_output output;
    log.trace(level, message, lead);
    return output.text();
}

std::string traced(std::uint32_t level, const std::string& message, const std::string& lead = "") {
    stream log;
    return traced(log, level, message, lead);
}

}  // namespace

TEST(Trace, PrintsEveryLevelWithItsPrefix) {
    EXPECT_EQ("[DEBUG] x\n", traced(1, "x"));
    EXPECT_EQ("[INFO] x\n", traced(2, "x"));
    EXPECT_EQ("abc\n", traced(4, "abc"));
    EXPECT_EQ("[WARN] x\n", traced(8, "x"));
    EXPECT_EQ("[ERROR] x\n", traced(16, "x"));
    EXPECT_EQ("[CRIT] x\n", traced(32, "x"));
}

TEST(Trace, PutsTheLeadAheadOfThePrefix) { EXPECT_EQ(">> [WARN] m\n", traced(8, "m", ">> ")); }

TEST(Trace, PrintsAnEmptyMessageWithItsPrefix) { EXPECT_EQ("[CRIT] \n", traced(32, "")); }

TEST(Trace, RefusesTwoLevelsAtOnceAndPrintsNothing) {
    stream log;
    captured_output output;
    EXPECT_EQ("Trace type not supported",
              thrown<std::runtime_error>([&] { log.trace(3, "m", ""); }));
    EXPECT_EQ("", output.text());
}

// The mask is looked at first, so that not even a wrong level is an error there.
TEST(Trace, DropsWhatTheMaskDoesNotHold) {
    masked_stream withoutLowLevels(0x3c);
    EXPECT_EQ("", traced(withoutLowLevels, 3, "m", ""));
    EXPECT_EQ("", traced(withoutLowLevels, 1, "m", ""));
    EXPECT_EQ("[WARN] m\n", traced(withoutLowLevels, 8, "m", ""));
    EXPECT_EQ("", traced(64, "m"));
}

TEST(Trace, SkipsAnEmptyMessageInTheShortForm) {
    stream log;
    captured_output output;
    log.trace("");
    log.trace("plain");
    EXPECT_EQ("plain\n", output.text());
}
