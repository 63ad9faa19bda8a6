#pragma once

#include <poll.h>

#include <vector>

#include "support/blocked_signals.hpp"

/// Thrown when a signal is to end the program, so that destructors remove what is not finished.
class interrupted {};

/// Holds the signals that end the program, for as long as it lives. What has come in by then takes
/// its usual effect at the end.
class interruption {
public:
    interruption();

private:
    blocked_signals held;
};

/// @throws interrupted when a signal has come in that the process does not ignore
void throwIfInterrupted();

/// Waits until one of the events happens, see poll(2).
/// @throws interrupted when a signal comes in; std::runtime_error when it cannot wait
void awaitEvents(std::vector<pollfd> events);
