#pragma once

// Keys that are no text. The terminal keeps the last two for itself while it is in line mode.

constexpr char endOfText = '\x03';  ///< Ctrl-C
constexpr char escape = '\x1b';
constexpr char goOn = '\x11';  ///< Ctrl-Q
constexpr char halt = '\x13';  ///< Ctrl-S
