#include "support/word_vector.hpp"

#include <gtest/gtest.h>

namespace {

using words_t = std::vector<std::string>;

words_t words(const std::string& text, char separator) {
    const word_vector vector(text, separator);
    words_t all;
    for (char* const* word = vector.data(); *word != nullptr; ++word) {
        all.emplace_back(*word);
    }
    EXPECT_EQ(all.empty(), vector.empty());
    return all;
}

}  // namespace

TEST(WordVector, SplitsAtTheSeparator) {
    EXPECT_EQ((words_t{"./varnflash", "../fw.bin", "/i"}), words("./varnflash ../fw.bin /i", ' '));
    EXPECT_EQ((words_t{"PATH=/bin:/usr/bin", "TERM=a b"}),
              words("PATH=/bin:/usr/bin;TERM=a b", ';'));
}

TEST(WordVector, SkipsEmptyWords) { EXPECT_EQ((words_t{"ls", "-l"}), words("  ls  -l ", ' ')); }

TEST(WordVector, KeepsTabsAndQuotesInWords) {
    EXPECT_EQ((words_t{"a\tb", "\"c", "d\""}), words("a\tb \"c d\"", ' '));
}

TEST(WordVector, IsEmptyWithoutWords) {
    EXPECT_EQ(words_t{}, words("", ' '));
    EXPECT_EQ(words_t{}, words("   ", ' '));
}
