/// Files that are written whole or not at all.
#ifndef ZARN_PROGRAMS_RESULTFILE_H
#define ZARN_PROGRAMS_RESULTFILE_H

#include <string>

namespace zarn {

/// Gives a file this content in one step. If that fails, it keeps its old content or stays missing.
/// A pipe or a device is written to directly.
///
/// Ctrl-C and termination wait until the file is complete. An existing file keeps its permission
/// bits; those of a new one come from the process's mask.
///
/// @throw std::system_error  naming the file
void writeWhole(const std::string& fileName, const std::string& content);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_RESULTFILE_H
