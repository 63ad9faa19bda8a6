#pragma once

#include <functional>

#include "app/gui.hpp"
#include "fuzz/menu_model.hpp"

/// Makes the terminal and the package that the application finds at its start. They stay until the
/// end of the process.
/// @return the side of the terminal on which a user types
int prepareSurroundings();

/// The application on its own terminal; what it draws goes to a text instead.
class fuzzed_gui : public gui {
public:
    /// @param evaluate as for gui
    explicit fuzzed_gui(bool evaluate);

    /// @return what happens up to the end of the program: one text for every choice or warning,
    /// with the highlight and the last drawing
    events_t run(const menu_elem_t& menu);

    /// Called whenever the menu is drawn: an input is read next.
    std::function<void()> drawnWhole = [] {};

    /// Called for every warning.
    std::function<void()> warned = [] {};

    /// Called instead of every operation.
    std::function<void()> operated = [] {};

    using stream::currentInput;
    using stream::discardKnocking;
    using stream::readByte;

private:
    std::ptrdiff_t lineCount() const;
    std::string event(const std::string& happened);

    texts_t drawn;
};
