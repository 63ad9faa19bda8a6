#pragma once

#include "contestants.hpp"
#include "rows.hpp"

/// How much is measured.
struct extent_t {
    int starts;         ///< of every contestant
    int keys;           ///< pressed in a session
    int sessions;       ///< in which keys are pressed
    int idleSeconds;    ///< that nothing is pressed
    int oldKeys;        ///< pressed before a session counts as old
    int oldSessions;    ///< that get old
    int longFileReads;  ///< of each release file
};

// Each measures all contestants in turn, so that what else the machine does meets them alike.

/// From right before the start to the last byte of the first frame.
rows_t measureStart(const contestants_t& contestants, const extent_t& extent);

/// What an arrow key and a digit cost, and the memory that is taken by then.
rows_t measureKeys(const contestants_t& contestants, const extent_t& extent);

/// The processor time of those who wait: at the menu, and ours at a warning and behind a flash.
rows_t measureIdle(const contestants_t& contestants, const extent_t& extent);

/// The system calls of the program itself up to the first frame.
rows_t measureSystemCalls(const contestants_t& contestants);

/// How the first keys of our session differ from those behind many.
struct ageing_t {
    samples_t youngMicroseconds;
    samples_t oldMicroseconds;
    samples_t youngDescriptors;
    samples_t oldDescriptors;
};
ageing_t measureAgeing(const contestant_t& contestant, const extent_t& extent);

/// What a release file of many lines costs, and how long grep(1) takes to look through it.
struct long_file_t {
    long lines;
    samples_t milliseconds;      ///< of the start, beyond the start with the file of the package
    samples_t peakKilobytes;     ///< of the whole program
    samples_t grepMilliseconds;  ///< beyond the time for the file of the package
};

/// @param package with a proper release file
/// @param longPackages the same with some thousand lines of other text in it
std::vector<long_file_t> measureLongFiles(const std::string& package,
                                          const std::vector<std::string>& longPackages,
                                          const extent_t& extent);
