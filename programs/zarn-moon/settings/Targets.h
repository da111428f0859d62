/// What an observer wants to look at.
#ifndef ZARN_MOON_TARGETS_H
#define ZARN_MOON_TARGETS_H

#include <string>
#include <vector>

#include "shared/sky/Angles.h"

struct Target {
    std::string name;
    Position place;  ///< as it was given
};

/// The targets of a file: lines of name, right ascension and declination with commas between them,
/// positions as `parsePosition` takes them. A name with commas or quotes stands in double quotes,
/// its quotes doubled. Empty lines, lines that begin with #, and a first line "name,ra,dec" do not
/// count.
///
/// @throw UsageError  naming file and line
std::vector<Target> readTargets(const std::string& fileName);

#endif  // ZARN_MOON_TARGETS_H
