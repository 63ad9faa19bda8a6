#pragma once

#include <exception>
#include <string>
#include <utility>

/// Ends the program in an orderly way; caught only by main. It is deliberately not a run-time
/// error, because the menu loop survives those.
class menu_exception : public std::exception {
public:
    /// @param text why the program ends, as it is shown to the user
    explicit menu_exception(std::string text) : reason(std::move(text)) {}

    const char* what() const noexcept override { return reason.c_str(); }

private:
    std::string reason;
};
