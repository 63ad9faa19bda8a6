#pragma once

/// @param count number of command-line words after the program's own
/// @param arguments these words
/// @return true when the only word asks for evaluation mode: "--eval" or "/eval"
bool isEvalArgument(int count, const char* const* arguments);
