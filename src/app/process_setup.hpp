#pragma once

#include <sys/resource.h>

/// Brings the process into the state that all else relies on, whoever started it: the standard
/// descriptors open (the null device stands in for one that was closed), no signal blocked, none
/// ignored that a child would inherit (terminal_guard sees to the others), room for the one
/// descriptor that each key leaves open, and standard output that reaches the terminal in one piece
/// when it is flushed. To be called before anything is opened or printed.
void setUpProcess();

/// @return the soft descriptor limit to ask for: as much as the hard one allows, at most 65,536,
/// and never less than there is
rlim_t descriptorLimit(const rlimit& current);
