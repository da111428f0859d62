/// What a program sets up before it begins.
#ifndef ZARN_PROGRAMS_PROCESS_H
#define ZARN_PROGRAMS_PROCESS_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace zarn {

/// Exit statuses; 0 is success.
inline constexpr int EXIT_SOME_FAILED = 1;
inline constexpr int EXIT_WRONG_USAGE = 2;
inline constexpr int EXIT_SIGNAL = 128;  ///< plus the signal's number

/// The levels of the log lines that are shown by default.
extern const u_long ERROR_AND_ABOVE;

/// Sets the levels of the log lines that the process shows.
void setPriorityMask(u_long mask);

/// The process's arguments, with the program's own name instead of the path by which it was
/// started. They point into `argv`.
std::vector<const char*> argumentsOf(const char* program, int argc, char** argv);

/// Lets a write to a closed pipe or beyond a file size limit fail with an error, instead of ending
/// the process by a signal.
void ignoreWriteSignals();

/// Lets the process end with a message and EXIT_SOME_FAILED where memory runs out in what must not
/// throw: the destructors of JSON values need some. Whatever else ends it there still aborts.
void reportMissingMemory();

/// Flushes standard output at the end of a program and gives its exit status. When the reader of a
/// pipe has left, as `head` does, it ends the process quietly by SIGPIPE, as other filters end; any
/// other failure is reported and becomes status 1.
///
/// @param status  the exit status unless standard output fails
int finishOutput(const std::string& program, int status);

/// Fills closed standard streams, so that no other file gets their descriptors. Each is opened in
/// the wrong direction: its use still fails, as it would have.
void reserveStandardStreams();

}  // namespace zarn

#endif  // ZARN_PROGRAMS_PROCESS_H
