#pragma once

// What is to fail, as the environment says:
//
//   FAULT=CALL:FIRST:LAST:ERROR   the calls FIRST to LAST of this one fail with this errno; "short"
//                                 and "eof" are errors of write and read alone, "out-of-range"
//                                 and "integer" are exceptions that waitpid throws, "stopped" is
//                                 its report of a child that has not ended; a main that fails has
//                                 no arguments, not even the program's own name; "window" and
//                                 "continue" are signals that come in right before epoll_pwait,
//                                 which does not fail, and "held" is a tcdrain that takes its time,
//                                 with interruptions before that where several calls are to fail
//   FAULT_LOG=FILE                is created once a call has failed
//   FAULT_HOLD=FIFO               ends what is held once somebody opens it for writing

// Errors that are none of errno's.
inline constexpr int shortCount = -2;
inline constexpr int endOfFile = -3;
inline constexpr int throwOutOfRange = -4;
inline constexpr int throwInteger = -5;
inline constexpr int stopped = -6;
inline constexpr int windowSignal = -7;
inline constexpr int continueSignal = -8;
inline constexpr int held = -9;

/// @return the error of this call of that name, errno set to it; 0 where it is to succeed
int errorOf(const char* call);

/// @return true while more calls of the one that fails are to fail
bool isMoreToFail();
