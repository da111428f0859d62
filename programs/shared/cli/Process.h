/// What a program sets up before it begins.
#ifndef ZARN_PROGRAMS_PROCESS_H
#define ZARN_PROGRAMS_PROCESS_H

#include <sys/types.h>

#include <vector>

/// Exit statuses; 0 is success.
constexpr int EXIT_SOME_FAILED = 1;
constexpr int EXIT_WRONG_USAGE = 2;
constexpr int EXIT_SIGNAL = 128;  ///< plus the signal's number

/// The levels of log lines that are shown when nothing else is asked for.
extern const u_long ERROR_AND_ABOVE;

/// Which of the process's log lines are shown.
void setPriorityMask(u_long mask);

/// The process's arguments under the program's own name, whatever path it was started by.
std::vector<const char*> argumentsOf(const char* program, int argc, char** argv);

/// Makes a full pipe, disk or quota an error of the write concerned instead of the process's end.
void ignoreWriteSignals();

/// Fills closed standard streams, so that no other file takes their place. Each is opened the wrong
/// way round: using it still fails, as it would have.
void reserveStandardStreams();

#endif  // ZARN_PROGRAMS_PROCESS_H
