#include "support/word_vector.hpp"

#include <cstring>
#include <utility>

word_vector::word_vector(std::string text, char separator) : buffer(std::move(text)) {
    const char separators[] = {separator, '\0'};
    char* rest = nullptr;
    for (char* word = strtok_r(buffer.data(), separators, &rest); word != nullptr;
         word = strtok_r(nullptr, separators, &rest)) {
        words.push_back(word);
    }
    words.push_back(nullptr);
}
