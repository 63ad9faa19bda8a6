// The input is a separator and a text to be split at it; the text is split as a command line and
// as an environment, too.

#include <cstdint>
#include <sstream>

#include "fuzz/require_same.hpp"
#include "support/word_vector.hpp"

namespace {

using words_t = std::vector<std::string>;

words_t wordsExpected(const std::string& text, char separator) {
    std::istringstream rest(text.substr(0, text.find('\0')));
    words_t words;
    for (std::string word; std::getline(rest, word, separator);) {
        if (!word.empty()) {
            words.push_back(word);
        }
    }
    return words;
}

words_t wordsMade(const std::string& text, char separator) {
    const word_vector vector(text, separator);
    words_t words;
    for (char* const* word = vector.data(); *word != nullptr; ++word) {
        words.emplace_back(*word);
    }
    requireSame(words.empty(), vector.empty());
    return words;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string text(data + 1, data + size);
    for (const char separator : {static_cast<char>(*data), ' ', ';'}) {
        requireSame(wordsExpected(text, separator), wordsMade(text, separator));
    }
    return 0;
}
