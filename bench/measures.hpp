#pragma once

#include "contestants.hpp"
#include "figures.hpp"

/// How much is measured.
struct extent_t {
    std::size_t starts;         ///< of every contestant
    std::size_t keys;           ///< pressed in a session
    std::size_t sessions;       ///< in which keys are pressed
    int idleSeconds;            ///< in which nothing is pressed
    std::size_t oldKeys;        ///< pressed before a session counts as old
    std::size_t windowKeys;     ///< pressed then, and at the start of a young session
    std::size_t oldSessions;    ///< that get old
    std::size_t longFileReads;  ///< of every release file
};

// All contestants take turns, so that other load on the machine affects them alike.

/// From just before the start to the last byte of the first frame.
void measureStart(const contestants_t& contestants, const extent_t& extent, figures_t& figures);

/// What an arrow key and a digit cost, and the memory used by then.
void measureKeys(const contestants_t& contestants, const extent_t& extent, figures_t& figures);

/// The processor time of waiting programs: all at the menu, ours also at a warning and after a
/// flash.
void measureIdle(const contestants_t& contestants, const extent_t& extent, figures_t& figures);

/// The system calls of the program itself up to the first frame and for each arrow key, see
/// strace(1).
void measureSystemCalls(const contestants_t& contestants, const extent_t& extent,
                        figures_t& figures);

/// How the first keys of our session differ from those after many others.
void measureAgeing(const contestants_t& contestants, const extent_t& extent, figures_t& figures);

/// @param package the demo package
/// @param longPackages the same with many more lines in the release file
long_files_t measureLongFiles(const std::string& package,
                              const std::vector<std::string>& longPackages, const extent_t& extent);
