/// Files that are written as a whole.
#ifndef ZARN_PROGRAMS_RESULTFILE_H
#define ZARN_PROGRAMS_RESULTFILE_H

#include <string>

/// Gives a file this content, in one step: on failure it keeps what it had, or stays missing. What
/// is no ordinary file, as a pipe or a device, is written to as it is.
///
/// Ctrl-C and termination wait until it is done. Permission bits stay, or come from the process's
/// mask.
///
/// @throw std::system_error  naming the file
void writeWhole(const std::string& fileName, const std::string& content);

#endif  // ZARN_PROGRAMS_RESULTFILE_H
