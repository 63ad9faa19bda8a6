#include "app/eval_argument.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace {

bool isEval(const std::vector<const char*>& words) {
    return isEvalArgument(static_cast<int>(words.size()), words.data());
}

}  // namespace

TEST(EvalArgument, IsExactlyOneOfTwoWords) {
    EXPECT_TRUE(isEval({"--eval"}));
    EXPECT_TRUE(isEval({"/eval"}));
}

TEST(EvalArgument, IsNoOtherCommandLine) {
    EXPECT_FALSE(isEval({}));
    EXPECT_FALSE(isEval({"--eval", "--eval"}));
    EXPECT_FALSE(isEval({"--eval", "x"}));
    EXPECT_FALSE(isEval({"-eval"}));
    EXPECT_FALSE(isEval({"--EVAL"}));
    EXPECT_FALSE(isEval({"--evaluate"}));
    EXPECT_FALSE(isEval({"eval"}));
    EXPECT_FALSE(isEval({""}));
}
