#include "docs/read_prog_handler.hpp"

#include <gtest/gtest.h>

#include "harness/test_surroundings.hpp"

namespace {

class read_prog_handler_test : public testing::Test {
protected:
    /// @return the input that is left when the handler is gone
    static int leftAfter(bool evaluate, const reader_prog_t& reader) {
        const typed_input keys("\nleft");
        captured_output output;
        read_prog_handler(evaluate, reader).showFile("../readme.txt");
        return getchar();
    }

    package_folder package;
    inside_package inside{package};
};

}  // namespace

TEST_F(read_prog_handler_test, WaitsForEnterWhereTheReaderAsksForIt) {
    EXPECT_EQ('l', leftAfter(false, {"more", "", true}));
    EXPECT_EQ('\n', leftAfter(false, {"less", "", false}));
    EXPECT_EQ('\n', leftAfter(true, {"cat", "", false}));
}

TEST_F(read_prog_handler_test, ClearsTheScreenBeforeItsReaderRuns) {
    leftAfter(false, {"less", "", false});
    EXPECT_EQ((std::vector<std::string>{"clear", "less ../readme.txt"}), package.commandLines());
}

// The assignment is kept with the reader and given to none.
TEST_F(read_prog_handler_test, RunsTheReaderInTheUsualEnvironment) {
    leftAfter(false, {"less", "LESSCHARSET=UTF-8", false});
    const auto environment = package.runs().back().environment;
    EXPECT_EQ(4U, environment.size());
    EXPECT_EQ("LANG=en_US.UTF-8", environment.back());
}

TEST_F(read_prog_handler_test, FailsWithoutClear) {
    package.remove("programs/clear");
    const reader_prog_t reader{"less", "", false};
    EXPECT_EQ("Command cannot be executed properly",
              thrown<std::runtime_error>([&] { read_prog_handler(false, reader); }));
}
