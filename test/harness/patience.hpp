#pragma once

#include <chrono>
#include <functional>
#include <string>

/// How long a test waits for something while nothing else happens: 10 s, or VARNMENU_PATIENCE
/// seconds where programs run more slowly than usual.
std::chrono::seconds patience();

/// Looks again and again until the condition holds.
/// @throws std::runtime_error that says what was waited for when patience() is over
void awaitTrue(const std::function<bool()>& condition, const std::string& what);
