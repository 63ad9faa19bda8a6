#pragma once

#include <string>
#include <vector>

/// A text split into words, in the null-terminated form that execve(2) takes. Empty words are
/// skipped; there is no quoting.
class word_vector {
public:
    /// @param text what to split; ends at its first NUL
    /// @param separator the one character between words
    word_vector(std::string text, char separator);

    word_vector(const word_vector&) = delete;
    word_vector& operator=(const word_vector&) = delete;

    bool empty() const { return words.size() == 1; }

    /// @return the words and a null pointer after them; valid as long as this object
    char* const* data() const { return words.data(); }

private:
    std::string buffer;
    std::vector<char*> words;
};
