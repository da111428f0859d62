/// What an observer wants to look at.
#ifndef ZARN_MOON_TARGETS_H
#define ZARN_MOON_TARGETS_H

#include <string>
#include <vector>

#include "shared/sky/Angles.h"

namespace zarn::moon {

/// One thing to look at.
struct Target {
    std::string name;   ///< of a target on the command line its position as given
    Position position;  ///< as given, not precessed
};

/// The targets of a file. Its lines hold name, right ascension and declination, separated by
/// commas; `parsePosition` reads the positions. A name with commas or quotes stands in double
/// quotes, its quotes doubled. Empty lines, lines that begin with #, and a first line "name,ra,dec"
/// are ignored.
///
/// @throw UsageError  naming the file, and the line at fault
std::vector<Target> readTargets(const std::string& fileName);

}  // namespace zarn::moon

#endif  // ZARN_MOON_TARGETS_H
