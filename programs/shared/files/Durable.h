/// Files whose names and contents survive a crash.
#ifndef ZARN_PROGRAMS_DURABLE_H
#define ZARN_PROGRAMS_DURABLE_H

#include <string>

namespace zarn {

/// Gives a file a name that no other file has, in one step. False, with `errno` set, if that
/// failed.
[[nodiscard]] bool renameToNew(const std::string& from, const std::string& to);

/// The same for names within open directories.
[[nodiscard]] bool renameToNew(int fromDirectory, const std::string& from, int toDirectory,
                               const std::string& to);

/// Waits until a file's content, or a directory's entries, are safe on disk.
///
/// @throw std::system_error  when the system cannot confirm it
void syncToDisk(const std::string& path);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_DURABLE_H
