#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/menu.hpp"

using texts_t = std::vector<std::string>;
using events_t = std::vector<std::string>;

inline constexpr std::size_t longestMenu = 120;

inline constexpr const char* releaseInformation =
    "VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=SV\nIMAGE_NAME=fw.bin\n";

/// @param kinds one character for each line, see menu_fuzz.cpp; title and information lines come
/// on top
menu_elem_t menuOf(const std::string& kinds);

/// @param text inputs, each after a "|"
/// @return the inputs, and a last one that ends the program
texts_t inputsOf(const std::string& text);

/// What a menu_model asks and tells.
struct menu_hooks_t {
    std::function<std::string()> nextInput;                ///< one that ends in Ctrl-C is the last
    std::function<bool()> confirms = [] { return true; };  ///< whether ENTER starts an operation
    std::function<void()> operated = [] {};                ///< called instead of every operation
    std::function<void()> warned = [] {};                  ///< called for every warning
};

/// A menu and its user on paper: shares nothing with the menu loop and the rules of movement.
class menu_model {
public:
    explicit menu_model(const std::string& kinds);

    /// @return see fuzzed_gui::run
    events_t run(const menu_hooks_t& hooks);

private:
    std::string answer(const std::string& input);
    bool isOnOperation() const;
    void moveUp();
    void moveDown();
    std::string drawing() const;

    std::string lines;         ///< the kind of every line by key, "_" for none
    std::vector<int> choices;  ///< the keys of the lines that can be selected, in order
    int selected = 0;
};
