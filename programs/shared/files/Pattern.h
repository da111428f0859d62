/// What a shell pattern matches.
#ifndef ZARN_PROGRAMS_PATTERN_H
#define ZARN_PROGRAMS_PATTERN_H

#include <string>
#include <system_error>
#include <vector>

/// A directory that may hold matches and cannot be listed.
struct Unlisted {
    std::string directory;
    std::error_code error;
};

struct Matches {
    std::vector<std::string> names;  ///< in alphabetical order
    std::vector<Unlisted> unlisted;
};

/// Expands a pattern as the shell does. The library's `FileIO::match` takes a directory that cannot
/// be listed for an empty one; here it is told.
Matches matchesOf(const std::string& pattern);

/// Whether a file of this name, there or not, would match a pattern whose directory has no
/// wildcard.
bool matches(const std::string& pattern, const std::string& fileName);

#endif  // ZARN_PROGRAMS_PATTERN_H
