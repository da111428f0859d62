/// What a shell pattern matches.
#ifndef ZARN_PROGRAMS_PATTERN_H
#define ZARN_PROGRAMS_PATTERN_H

#include <string>
#include <system_error>
#include <vector>

namespace zarn {

/// A directory that may hold matches and cannot be listed.
struct Unlisted {
    std::string directory;
    std::error_code error;
};

/// The files that a pattern matches, and the directories that may hide more.
struct Matches {
    std::vector<std::string> names;  ///< in alphabetical order
    std::vector<Unlisted> unlisted;
};

/// Expands a pattern as the shell does. Unlike the library's `FileIO::match`, it does not take a
/// directory that cannot be listed for an empty one.
Matches matchesOf(const std::string& pattern);

/// Whether a name matches a pattern whose directory has no wildcards; the file need not exist.
bool matches(const std::string& pattern, const std::string& fileName);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_PATTERN_H
