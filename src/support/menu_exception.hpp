#pragma once

#include <exception>
#include <string>
#include <utility>

/// The signal for an orderly end of the program, caught by the program entry alone. It is no
/// run-time error on purpose: the menu loop survives those and lets this one pass.
class menu_exception : public std::exception {
public:
    /// @param text why the program ends, as it is shown to the user
    explicit menu_exception(std::string text) : reason(std::move(text)) {}

    const char* what() const noexcept override { return reason.c_str(); }

private:
    std::string reason;
};
